// Keeps one search state from match to match and from subject to subject, so that later searches allocate nothing that an
// earlier one has allocated.
#include "regexp/match_sequence.h"

#include "regexp/base/within_size.h"
#include "regexp/search/machine_search.h"
#include "regexp/search/search.h"
#include "regexp/tree.h"

#include <algorithm>
#include <new>

namespace {

/// Hands a request to stop back that came before the search, however that ends.
class Interrupt_Aside {
public:
    explicit Interrupt_Aside(RE_Search_Info& search) : info(search) { info.putInterruptAside(); }
    ~Interrupt_Aside() { info.handInterruptBack(); }
    Interrupt_Aside(const Interrupt_Aside&) = delete;
    Interrupt_Aside& operator=(const Interrupt_Aside&) = delete;

private:
    RE_Search_Info& info;
};

}  // namespace

// The state is told of interrupts only while a search runs: a request that comes between two searches is for
// the caller to see.
RE_Match_Sequence::RE_Match_Sequence(const RE_Tree& pattern, std::u16string_view subject,
                                     const RE_Search_Limits* searchLimits)
    : tree(pattern), info(freshState(subject)), isLimited(searchLimits != nullptr) {
    if (info.tokens == nullptr) {
        throw std::bad_alloc();
    }
    info.checkInterrupts = tree.interruptible;
    if (searchLimits != nullptr) {
        account.setCeiling(searchLimits->bytes);
        info.meter.setBudget(searchLimits->steps);
        limits = *searchLimits;
        info.heed(limits.mayEndFromOutside() ? &limits : nullptr);
    }
}

RE_Search_Info RE_Match_Sequence::freshState(std::u16string_view subject) {
    const RE_Memory_Account::Scope scope(account);
    return RE_Search_Info(subject.data() != nullptr ? subject.data() : u"", subject.size(),
                          withinSize(tree.tokenCount), &table, false);
}

// What is done once, or with limits only, stands by itself: the rest is short then.
void RE_Match_Sequence::use(std::u16string_view subject) {
    isLimited ? turnWithin(subject) : turnTo(subject);
}

// What the searches before hold is given back to the account that it was taken from.
[[gnu::noinline]] void RE_Match_Sequence::turnWithin(std::u16string_view subject) {
    const RE_Memory_Account::Scope scope(account);
    turnTo(subject);
}

void RE_Match_Sequence::turnTo(std::u16string_view subject) {
    const char16_t* const begin = subject.data() != nullptr ? subject.data() : u"";
    if (view) {
        view->subjectBegin = begin;
        view->subjectEnd = begin + subject.size();
    }
    seen = found = memoryFull = clockWasRead = false;
    table.clear();
    info.useSubject(begin, subject.size(), withinSize(tree.tokenCount));
    if (info.tokens == nullptr) {
        throw std::bad_alloc();
    }
}

// A search that was broken off leaves states in the memo that it was still exploring: none may follow.
RE_Results* RE_Match_Sequence::find(std::size_t offset, std::size_t latestStart) {
    found = false;
    if (info.tokens == nullptr || info.wasInterrupted()) {
        return nullptr;  // they were released, or the sequence is over
    }
    if (code != nullptr) {
        return searchByCode(offset, latestStart);
    }
    return isLimited ? searchWithin(offset, latestStart) : search(offset, latestStart);
}

[[gnu::noinline]] RE_Results* RE_Match_Sequence::searchWithin(std::size_t offset, std::size_t latestStart) {
    const RE_Memory_Account::Scope scope(account);
    try {
        memoryFull = memoryFull || account.isOver();
        return memoryFull || isEndedFromOutside() ? nullptr : search(offset, latestStart);
    } catch (const RE_Ceiling_Reached&) {
        memoryFull = true;
        return nullptr;
    }
}

// Short searches are over before they poll. The clock takes as long to read as some of them take, so it is read for the
// first one only; those after it reach a checkpoint together.
bool RE_Match_Sequence::isEndedFromOutside() {
    const bool asks = limits.stop.stop_requested() || !clockWasRead;
    clockWasRead = true;
    return asks && info.pollLimits();
}

void RE_Match_Sequence::goOn(std::size_t offset) {
    if (seen) {
        info.searchAgain(offset, view->matchStart + view->matchLength);
    } else if (!prepared) {
        getReady();
    }
}

[[gnu::noinline]] void RE_Match_Sequence::getReady() {
    makeReady(info, *tree.facts, !isLimited);
    prepared = tree.facts->profiler == nullptr;  // each search counts for itself
    mayRunCode = !isLimited && !info.checkInterrupts && prepared;
}

RE_Results* RE_Match_Sequence::see(std::size_t length) {
    found = seen = true;
    if (!view) {
        return makeView(length);
    }
    view->matchStart = info.indexOf(info.matchStart);
    view->matchLength = length;
    return &*view;
}

[[gnu::noinline]] RE_Results* RE_Match_Sequence::makeView(std::size_t length) {
    return &view.emplace(&info, info.matchStart, length, false);
}

RE_Results* RE_Match_Sequence::search(std::size_t offset, std::size_t latestStart) {
    if (tree.root == nullptr) {
        return nullptr;
    }
    goOn(offset);
    const Interrupt_Aside aside(info);
    std::size_t length = 0;
    found = findMatch(*tree.facts, info, offset, length, latestStart) && !info.pollInterrupt();
    if (mayRunCode) {
        code = tree.facts->speedUps.machineCode.get();
    }
    return found ? see(length) : nullptr;
}

// Nobody can break it off.
inline RE_Results* RE_Match_Sequence::searchByCode(std::size_t offset, std::size_t latestStart) {
    const RE_Graph_Facts& facts = *tree.facts;
    const std::size_t size = info.subjectLength();
    if (facts.minimumLength > size - offset || latestStart < offset) {
        return nullptr;
    }
    const std::size_t last = std::min(size - withinSize(facts.minimumLength), latestStart);
    goOn(offset);
    std::size_t length = 0;
    const bool matched =
        findByMachineCode(facts, *code, info.subjectBegin + offset, info.subjectBegin + last, info, length);
    return matched ? see(length) : nullptr;
}

RE_Results* RE_Match_Sequence::releaseMatch() {
    if (!found || outcome() != RE_Search_Outcome::matched) {
        return nullptr;
    }
    found = false;
    const std::size_t length = view->matchLength;
    view.reset();
    seen = false;
    RE_Results* const match = new (std::nothrow) RE_Results(&info, info.matchStart, length, true);
    memoryFull = match == nullptr;
    return match;
}

RE_Search_Outcome RE_Match_Sequence::outcome() const {
    if (memoryFull) {
        return RE_Search_Outcome::memoryFull;
    }
    const bool complete = !info.wasInterrupted();
    return complete && seen ? RE_Search_Outcome::matched : info.stopReason();
}

RE_Search_Report RE_Match_Sequence::report() const {
    return {outcome(), info.meter.taken(), account.peak()};
}
