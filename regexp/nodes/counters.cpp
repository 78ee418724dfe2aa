// What counters do to the counts of a search, and how their records undo it.
//
// Invariant: when a record of a counter has been popped, the counts are as they were when it was pushed.
#include "regexp/nodes/counters.h"

#include "regexp/base/within_size.h"
#include "regexp/graph/meaning.h"
#include "regexp/state/search_info.h"

#include <algorithm>

void RE_Greedy_Counter::onBacktrack(RE_Search_Info& info) const {
    info.decrementCount(this);
}

// A refused state left no record that could count the pass back, so that is done here. It is a dead end, not
// a failure: the exit was part of the same state and has been tried.
bool RE_Greedy_Counter::beginPass(const char16_t* p, RE_Search_Info& info) const {
    info.incrementCount(this);
    if (!info.pushChoice(this, p, true)) {
        info.decrementCount(this);
        info.deadEnd();
        return false;
    }
    return true;
}

// The record only undoes the count: a required pass has no other way on. The done node is where a failing
// `match` leads, at the same position.
bool RE_Fixed_Counter::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    const std::uint64_t count = info.countAt(this, 0);
    if (count > limit) {
        return false;
    }
    if (passesAtEnd == 0) {
        return beginPass(subject + pos, info);
    }
    // More than sizes can say are left to the next pass.
    const std::size_t idle = withinSize(idlePasses(limit - count + 1, info.subjectLength() - pos));
    info.incrementCount(this);
    info.counterStacks[this].back() += idle;
    info.pushRecord(this, subject + pos, idle);
    return true;
}

void RE_Fixed_Counter::onBacktrack(RE_Search_Info& info) const {
    info.decrementCount(this);
    if (passesAtEnd != 0) {
        info.counterStacks[this].back() -= info.poppedWord();
    }
}

// Passes that could be of use are `passesPerUnit` for each unit left and `passesAtEnd`; the rest is idle. The
// first test keeps the product from overflowing.
std::uint64_t RE_Fixed_Counter::idlePasses(std::uint64_t left, std::size_t unitsLeft) const {
    const std::uint64_t most = left > passesAtEnd ? left - passesAtEnd : 0;
    return passesPerUnit != 0 && unitsLeft > most / passesPerUnit ? 0 : most - passesPerUnit * unitsLeft;
}

void RE_Fixed_Counter::visitLinks(RE_Link_Visitor& visitor) {
    RE_Node::visitLinks(visitor);
    visitor.link(doneNode, RE_Link::done);
}

std::string RE_Fixed_Counter::label() const {
    return "Fixed Counter{" + std::to_string(limit + 1) + "}";
}

// At the limit there is nothing to choose: matching continues at the exit, where `failNode` leads.
bool RE_Limit_Counter::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    return info.countAt(this, 0) < limit && beginPass(subject + pos, info);
}

std::string RE_Limit_Counter::label() const {
    return "Limit Counter{" + std::to_string(limit) + "}";
}

// Takes the exit. The record of the decrementer goes below that of the counter; the first is no choice, so it
// is never refused by the memo.
bool RE_Lazy_Counter::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    if (info.countAt(this, 0) >= limit) {
        return false;
    }
    info.pushChoice(decrementer, subject + pos, true);
    if (!info.pushChoice(this, subject + pos, true)) {
        onBacktrack(info);  // evens out what the decrementer's record will take back
        info.deadEnd();
        return false;
    }
    return true;
}

void RE_Lazy_Counter::onBacktrack(RE_Search_Info& info) const {
    info.incrementCount(this);
}

void RE_Lazy_Counter::visitLinks(RE_Link_Visitor& visitor) {
    RE_Split::visitLinks(visitor);
    visitor.link(decrementer, RE_Link::helper);
}

std::string RE_Lazy_Counter::label() const {
    return "Lazy Counter{" + std::to_string(limit) + "}";
}

void RE_Counter_Popper::onBacktrack(RE_Search_Info& info) const {
    info.popCount(counter);
}

void RE_Lazy_Decrementer::onBacktrack(RE_Search_Info& info) const {
    info.decrementCount(counter);
}

bool RE_Start_Counter::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    info.pushChoice(popper, subject + pos, true);
    info.pushCount(counter);
    if (count != 0) {
        info.counterStacks[counter].back() = count;
    }
    return true;
}

void RE_Start_Counter::visitLinks(RE_Link_Visitor& visitor) {
    RE_Node::visitLinks(visitor);
    visitor.link(popper, RE_Link::helper);
}

// The helpers of a loop lie on the stack of choices only; no way through a graph leads to them.
RE_Meaning RE_Counter::meaning() const {
    return RE_Meanings::Unknown{};
}

RE_Meaning RE_Fixed_Counter::meaning() const {
    return RE_Meanings::Count{RE_Meanings::Count::Kind::fixed, limit, nextNode, doneNode};
}

RE_Meaning RE_Limit_Counter::meaning() const {
    return RE_Meanings::Count{RE_Meanings::Count::Kind::greedy, limit, nextNode, alternative};
}

RE_Meaning RE_Lazy_Counter::meaning() const {
    return RE_Meanings::Count{RE_Meanings::Count::Kind::lazy, limit, alternative, nextNode};
}

RE_Meaning RE_Start_Counter::meaning() const {
    return RE_Meanings::Count_Start{counter, count, nextNode};
}
