// From start position to start position: by machine code, by the program or by the graph, whichever is the fastest that the
// search allows. All three try the same starts in the same order and count the same steps.
#include "regexp/search/search.h"

#include "regexp/base/within_size.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/program/run_program.h"
#include "regexp/search/machine_search.h"
#include "regexp/search/match_loop.h"
#include "regexp/search/observer.h"
#include "regexp/search/start_walk.h"
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

/// Tries start after start, from `p` on, until `attempt` succeeds at one.
template <class Attempt>
[[gnu::always_inline]] inline bool tryStarts(RE_Start_Walk walk, const char16_t* p, Attempt attempt) {
    for (p = walk.from(p); p != nullptr; p = walk.from(p + 1)) {
        if (attempt(p)) {
            return true;
        }
        p = walk.lastInVain(p);
        if (p == nullptr) {
            return false;
        }
    }
    return false;
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

bool findByProgram(const RE_Start_Walk& walk, const RE_Graph_Facts& facts, RE_Search_Info& info,
                   const char16_t* p, std::size_t& length) {
    return tryStarts(walk, p, [&](const char16_t* at) {
        info.matchStart = at;
        return attemptByProgram(facts, info, length);
    });
}

bool findByGraph(const RE_Start_Walk& walk, const RE_Node* root, const RE_Graph_Facts& facts,
                 RE_Search_Info& info, const char16_t* p, std::size_t& length) {
    info.resetForStart(p);
    return tryStarts(walk, p, [&](const char16_t* at) {
        info.moveStart(at);
        return info.observer != nullptr ? attemptWatched(root, info, length)
                                        : attemptUnwatched(facts.start, info, length);
    });
}

}  // namespace

// Ends at the subject's end itself, so that a pattern may match the empty text there. A start that leaves
// fewer units than any match needs is not tried; patterns that call the host are run at every start.
bool findMatch(const RE_Node* root, const RE_Graph_Facts& facts, RE_Search_Info& info, std::size_t offset,
               std::size_t& length) {
    const std::uint64_t needed = facts.hasDynamicNodes ? 0 : facts.minimumLength;
    if (needed > info.subjectLength() - offset) {
        return false;
    }
    const char16_t* const p = info.subjectBegin + offset;
    const char16_t* const last = info.subjectEnd - withinSize(needed);
    const bool isWatched = info.observer != nullptr || info.tokens == nullptr;
    if (facts.machineCode != nullptr && !isWatched) {
        return findByMachineCode(facts, root, p, last, info, length);
    }
    const RE_Start_Walk walk(root, facts, last, info);
    const bool hasProgram = facts.program.entry != nullptr;
    return hasProgram && !isWatched ? findByProgram(walk, facts, info, p, length)
                                    : findByGraph(walk, root, facts, info, p, length);
}

bool attemptAt(const RE_Node* root, const RE_Graph_Facts& facts, RE_Search_Info& info, const char16_t* p,
               std::size_t& length) {
    info.resetForStart(p);
    return info.observer != nullptr ? attemptWatched(root, info, length)
                                    : attemptUnwatched(facts.start, info, length);
}
