// From start position to start position: by machine code, by the program or by the graph, whichever is the fastest that the
// search allows. All three try the same starts in the same order and count the same steps.
#include "regexp/search/search.h"

#include "regexp/base/within_size.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/program/run_program.h"
#include "regexp/search/machine_search.h"
#include "regexp/search/match_loop.h"
#include "regexp/search/start_walk.h"
#include "regexp/search/tell.h"
#include "regexp/search/unwatched_loop.h"
#include "regexp/state/search_info.h"

#include <algorithm>

namespace {

/// An attempt at the start that the state is at, for nobody who watches.
[[gnu::always_inline]] inline bool attemptUnwatched(const RE_Attempt_Start& start, RE_Search_Info& info,
                                                    std::size_t& length) {
    const char16_t* p = info.matchStart;
    // A scan that was broken off may have led to an end too early.
    if (!beginUnwatched(start, info, p) || info.wasInterrupted()) {
        return false;
    }
    length = static_cast<std::size_t>(p - info.matchStart);
    return true;
}

/// The same, as far as it goes by the program of the graph.
[[gnu::always_inline]] inline bool attemptByProgram(const RE_Graph_Facts& facts, RE_Search_Info& info,
                                                    std::size_t& length) {
    const std::int64_t stepsBefore = facts.start.skipsSeeker ? 1 : 0;
    if (!info.meter.hasRoom(stepsBefore + RE_Instruction::mostSteps)) {
        info.resetForStart(info.matchStart);
        return attemptUnwatched(facts.start, info, length);
    }
    const RE_Program_Exit exit = RE_Program_Run(info, facts, stepsBefore).run(facts.program.entry);
    if (exit.how == RE_Program_Exit::How::failed) {
        return false;
    }
    const char16_t* p = exit.p;
    if (exit.how == RE_Program_Exit::How::left) {
        info.enterLoop();
        if (!runUnwatchedLoop(info, exit.node, p)) {
            return false;
        }
    }
    length = static_cast<std::size_t>(p - info.matchStart);
    return !info.wasInterrupted();
}

bool attemptWatched(const RE_Node* root, RE_Search_Info& info, std::size_t& length) {
    const char16_t* const p = info.matchStart;
    std::size_t pos = info.indexOf(p);
    tellStart(info, p);
    const bool matched = runMatchLoop(info, root, pos) && !info.wasInterrupted();
    length = matched ? pos - info.indexOf(p) : 0;
    tellFinish(info, p, length, matched);
    return matched;
}

bool findByGraph(RE_Start_Walk walk, const RE_Graph_Facts& facts, RE_Search_Info& info, const char16_t* p,
                 std::size_t& length) {
    info.resetForStart(p);
    for (p = walk.from(p); p != nullptr; p = walk.from(p + 1)) {
        info.moveStart(p);
        if (info.observer != nullptr ? attemptWatched(facts.root, info, length)
                                     : attemptUnwatched(facts.start, info, length)) {
            return true;
        }
        p = walk.lastInVain(p);
        if (p == nullptr) {
            return false;
        }
    }
    return false;
}

/// Runs by the program until the searches of the pattern have been enough work for machine code, and by that from the next
/// start on.
bool findByProgram(RE_Start_Walk walk, const RE_Graph_Facts& facts, RE_Search_Info& info, const char16_t* p,
                   const char16_t* last, std::size_t& length) {
    const RE_Speed_Ups& speedUps = facts.speedUps;
    const std::uint64_t before = speedUps.steps.get();
    const std::uint64_t enough =
        speedUps.machineCode.isOpen() ? facts.tuning.machineCodeSteps : RE_Tuning::never;
    const std::uint64_t stepsLeft = enough - std::min(before, enough);
    const std::uint64_t begun = info.meter.taken();
    bool grows = enough != RE_Tuning::never;
    for (p = walk.from(p); p != nullptr; p = walk.from(p + 1)) {
        info.matchStart = p;
        if (attemptByProgram(facts, info, length)) {
            return true;
        }
        p = walk.lastInVain(p);
        if (p == nullptr) {
            return false;
        }
        if (grows && info.meter.taken() - begun >= stepsLeft) {
            const RE_Machine_Code* const code = RE_Machine_Code::obtain(facts);
            if (code != nullptr) {
                return p < last &&
                       continueByMachineCode(facts, *code, p + 1, last, walk.roomUpToAsking(), info, length);
            }
            grows = false;
        }
    }
    return false;
}

/// Adds what a search took to the work of the pattern, which is worth machine code at some point.
class Counted_Work {
public:
    Counted_Work(const RE_Graph_Facts& graphFacts, const RE_Search_Info& search)
        : facts(graphFacts), info(search), before(search.meter.taken()) {}
    ~Counted_Work() {
        RE_Speed_Ups& speedUps = facts.speedUps;
        if (speedUps.machineCode.isOpen() &&
            speedUps.steps.add(info.meter.taken() - before + stepsASearch) >= facts.tuning.machineCodeSteps) {
            RE_Machine_Code::obtain(facts);
        }
    }
    Counted_Work(const Counted_Work&) = delete;
    Counted_Work& operator=(const Counted_Work&) = delete;

private:
    static constexpr std::uint64_t stepsASearch = 8;  // what a search takes beside its steps

    const RE_Graph_Facts& facts;
    const RE_Search_Info& info;
    std::uint64_t before;
};

}  // namespace

void makeReady(RE_Search_Info& info, const RE_Graph_Facts& facts, bool asks) {
    info.prepare(facts);
    info.rejectEmpty = facts.refusesEmpty ? 1 : 0;
    if (asks) {
        info.beginInquiry();
    }
}

// Ends at the subject's end itself, so that a pattern may match the empty text there. A start that leaves
// fewer units than any match needs is not tried; patterns that call the host are run at every start.
bool findMatch(const RE_Graph_Facts& facts, RE_Search_Info& info, std::size_t offset, std::size_t& length,
               std::size_t latestStart) {
    const std::uint64_t needed = facts.hasDynamicNodes ? 0 : facts.minimumLength;
    if (needed > info.subjectLength() - offset || latestStart < offset) {
        return false;
    }
    const char16_t* const p = info.subjectBegin + offset;
    const char16_t* const last =
        info.subjectBegin + std::min(info.subjectLength() - withinSize(needed), latestStart);
    const bool isWatched = info.observer != nullptr || info.tokens == nullptr;
    if (isWatched || facts.program.entry == nullptr) {
        return findByGraph(RE_Start_Walk(facts, last, info), facts, info, p, length);
    }
    if (const RE_Machine_Code* const code = facts.speedUps.machineCode.get()) {
        return findByMachineCode(facts, *code, p, last, info, length);
    }
    const Counted_Work work(facts, info);
    return findByProgram(RE_Start_Walk(facts, last, info), facts, info, p, last, length);
}

bool attemptAt(const RE_Graph_Facts& facts, RE_Search_Info& info, const char16_t* p, std::size_t& length) {
    info.resetForStart(p);
    return info.observer != nullptr ? attemptWatched(facts.root, info, length)
                                    : attemptUnwatched(facts.start, info, length);
}
