// The search: start position after start position, or from candidate to candidate where the root can seek.
#include "regexp/tree.h"

#include "host/code_page.h"
#include "regexp/graph_facts.h"
#include "regexp/guest_run.h"
#include "regexp/inspect/observer.h"
#include "regexp/machine/machine_search.h"
#include "regexp/match_loop.h"
#include "regexp/match_sequence.h"
#include "regexp/program/run_program.h"
#include "regexp/search_info.h"
#include "regexp/start_walk.h"
#include "regexp/unwatched_loop.h"
#include "regexp/within_size.h"

#include <algorithm>
#include <new>

RE_Results* RE_Tree::match(const std::u16string& subject, std::size_t offset) const {
    return match(subject.data(), subject.size(), offset);
}

RE_Results* RE_Tree::match(const char16_t* subject, std::size_t length, std::size_t offset) const {
    RE_Seek_Table table;
    return searchFrom(subject, length, offset, &table);
}

RE_Results* RE_Tree::match(const char16_t* subject, std::size_t length, std::size_t offset,
                           RE_Seek_Table* table) const {
    return searchFrom(subject, length, offset, table);
}

RE_Results* RE_Tree::match(const char* subject, std::size_t offset) const {
    if (subject == nullptr) {
        return nullptr;
    }
    std::size_t length = 0;
    const RE_Host_Block<char16_t> converted(lcp_to_utf16(subject, &length));
    RE_Results* const results = match(converted.get(), length, offset);
    if (results != nullptr) {
        results->subjectBegin = results->subjectEnd = nullptr;
    }
    return results;
}

RE_Results* RE_Tree::match(const char16_t* subject, std::size_t length, std::size_t offset,
                           const RE_Search_Limits& limits, RE_Search_Report& report) const {
    report = {};
    if (subject == nullptr || offset > length) {
        return nullptr;
    }
    RE_Match_Sequence search(*this, {subject, length}, &limits);
    search.find(offset);
    report = search.report();
    RE_Results* const match = search.releaseMatch();
    if (match == nullptr && report.outcome == RE_Search_Outcome::matched) {
        report.outcome = RE_Search_Outcome::memoryFull;
    }
    return match;
}

RE_Results* RE_Tree::trace(const char16_t* subject, std::size_t length, std::size_t offset,
                           RE_Observer& observer) const {
    RE_Seek_Table table;
    return searchFrom(subject, length, offset, &table, &observer);
}

bool RE_Tree::match_bool(const char16_t* position, std::size_t* length, RE_Search_Info* info) const {
    *length = 0;
    if (root == nullptr || position < info->subjectBegin || position > info->subjectEnd) {
        return false;
    }
    RE_Guest_Run run(*info, *facts, position);
    const std::size_t start = info->indexOf(position);
    std::size_t pos = start;
    const bool completed = run.run(root, pos);
    *length = completed ? pos - start : 0;
    return completed;
}

RE_Results* RE_Tree::searchFrom(const char16_t* subject, std::size_t length, std::size_t offset,
                                RE_Seek_Table* table, RE_Observer* observer) const {
    if (subject == nullptr || offset > length || root == nullptr) {
        return nullptr;
    }
    RE_Search_Info info(subject, length, withinSize(tokenCount), table, interruptible);
    info.prepare(*facts);
    info.rejectEmpty = allowEmptyMatch ? 0 : 1;
    info.observer = observer;
    if (observer == nullptr) {
        info.beginInquiry();
    }
    std::size_t matchLength = 0;
    if (!findMatch(info, offset, matchLength) || info.pollInterrupt()) {
        return nullptr;
    }
    return new (std::nothrow) RE_Results(&info, info.matchStart, matchLength, true);
}

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

}  // namespace

// Ends at the subject's end itself, so that a pattern may match the empty text there. A start that leaves
// fewer units than any match needs is not tried; patterns that call the host are run at every start.
bool RE_Tree::findMatch(RE_Search_Info& info, std::size_t offset, std::size_t& length) const {
    const std::uint64_t needed = facts->hasDynamicNodes ? 0 : facts->minimumLength;
    if (needed > info.subjectLength() - offset) {
        return false;
    }
    const char16_t* const p = info.subjectBegin + offset;
    const char16_t* const last = info.subjectEnd - withinSize(needed);
    const bool isWatched = info.observer != nullptr || info.tokens == nullptr;
    if (facts->machineCode != nullptr && !isWatched) {
        return findByMachineCode(*facts, root, p, last, info, length);
    }
    return facts->program.entry != nullptr && !isWatched ? findByProgram(info, p, last, length)
                                                         : findByGraph(info, p, last, length);
}

bool RE_Tree::findByProgram(RE_Search_Info& info, const char16_t* p, const char16_t* last,
                            std::size_t& length) const {
    return tryStarts(RE_Start_Walk(root, *facts, last, info), p, [&](const char16_t* at) {
        info.matchStart = at;
        return attemptByProgram(*facts, info, length);
    });
}

bool RE_Tree::findByGraph(RE_Search_Info& info, const char16_t* p, const char16_t* last,
                          std::size_t& length) const {
    info.resetForStart(p);
    return tryStarts(RE_Start_Walk(root, *facts, last, info), p, [&](const char16_t* at) {
        info.moveStart(at);
        return info.observer != nullptr ? attemptWatched(info, length)
                                        : attemptUnwatched(facts->start, info, length);
    });
}

bool RE_Tree::attempt(RE_Search_Info& info, const char16_t* p, std::size_t& length) const {
    info.resetForStart(p);
    return info.observer != nullptr ? attemptWatched(info, length)
                                    : attemptUnwatched(facts->start, info, length);
}

bool RE_Tree::attemptWatched(RE_Search_Info& info, std::size_t& length) const {
    const char16_t* const p = info.matchStart;
    std::size_t pos = info.indexOf(p);
    tellStart(info, p);
    const bool matched = runMatchLoop(info, root, pos) && !info.wasInterrupted();
    length = matched ? pos - info.indexOf(p) : 0;
    tellFinish(info, p, length, matched);
    return matched;
}

bool RE_Tree::makeMachineCode() {
    if (facts != nullptr && facts->machineCode == nullptr) {
        RE_Memory_Account account;
        const RE_Memory_Account::Scope scope(account);
        facts->machineCode = RE_Machine_Code::make(*facts, root);
        facts->bytes += account.held();
    }
    return facts != nullptr && facts->machineCode != nullptr;
}

bool RE_Tree::makeDfa() {
    if (facts != nullptr && root != nullptr && facts->dfa == nullptr) {
        RE_Memory_Account account;
        const RE_Memory_Account::Scope scope(account);
        facts->dfa = RE_Dfa::make(*facts, !allowEmptyMatch);
        facts->bytes += account.held();
    }
    return facts != nullptr && facts->dfa != nullptr;
}
