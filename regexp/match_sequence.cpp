// Keeps one search state from match to match and from subject to subject, so that later searches allocate nothing that an
// earlier one has allocated.
#include "regexp/match_sequence.h"

#include "regexp/base/memory_account.h"
#include "regexp/base/search_limits.h"
#include "regexp/base/within_size.h"
#include "regexp/search/machine_search.h"
#include "regexp/search/search.h"
#include "regexp/seek/seek_table.h"
#include "regexp/state/earlier_interrupt.h"
#include "regexp/state/search_info.h"
#include "regexp/tree.h"

#include <algorithm>
#include <new>
#include <optional>

/// All that a sequence keeps, as one block of memory.
class RE_Match_Sequence::Run : public RE_Memory {
public:
    Run(const RE_Tree& pattern, std::u16string_view subject, const RE_Search_Limits* searchLimits);

    void use(std::u16string_view subject);
    RE_Results* find(std::size_t offset, std::size_t latestStart);
    RE_Results* releaseMatch();
    RE_Search_Report report() const;

private:
    RE_Search_Info freshState(std::u16string_view subject);
    RE_Search_Outcome outcome() const;
    void turnTo(std::u16string_view subject);
    void turnWithin(std::u16string_view subject);
    RE_Results* searchWithin(std::size_t offset, std::size_t latestStart);
    RE_Results* search(std::size_t offset, std::size_t latestStart);
    RE_Results* searchByCode(std::size_t offset, std::size_t latestStart);
    /// Makes ready for a search from `offset` on, after those that were before.
    void goOn(std::size_t offset);
    bool isEndedFromOutside();
    RE_Results* see(std::size_t length);
    void getReady();
    RE_Results* makeView(std::size_t length);

    const RE_Tree& tree;
    RE_Memory_Account account;
    RE_Seek_Table table;
    RE_Search_Info info;
    RE_Search_Limits limits;
    bool isLimited;
    bool clockWasRead = false;  ///< since the subject is this one
    bool memoryFull = false;
    bool prepared = false;                  ///< for the pattern
    bool found = false;                     ///< the last search found a match, which was not released
    bool seen = false;                      ///< a match in the subject; the last one is in the view
    bool mayRunCode = false;                ///< machine code is all that a search needs
    const RE_Machine_Code* code = nullptr;  ///< the pattern's, once it has some
    std::optional<RE_Results> view;
};

RE_Match_Sequence::RE_Match_Sequence(const RE_Tree& pattern, std::u16string_view subject,
                                     const RE_Search_Limits* searchLimits)
    : run(std::make_unique<Run>(pattern, subject, searchLimits)) {}

RE_Match_Sequence::~RE_Match_Sequence() = default;

void RE_Match_Sequence::use(std::u16string_view subject) {
    run->use(subject);
}

RE_Results* RE_Match_Sequence::find(std::size_t offset, std::size_t latestStart) {
    return run->find(offset, latestStart);
}

RE_Results* RE_Match_Sequence::releaseMatch() {
    return run->releaseMatch();
}

RE_Search_Report RE_Match_Sequence::report() const {
    return run->report();
}

// The state is told of interrupts only while a search runs: a request that comes between two searches is for
// the caller to see.
RE_Match_Sequence::Run::Run(const RE_Tree& pattern, std::u16string_view subject,
                            const RE_Search_Limits* searchLimits)
    : tree(pattern), info(freshState(subject)), isLimited(searchLimits != nullptr) {
    if (info.tokens == nullptr) {
        throw std::bad_alloc();
    }
    info.checkInterrupts = tree.isInterruptible();
    if (searchLimits != nullptr) {
        account.setCeiling(searchLimits->bytes);
        info.meter.setBudget(searchLimits->steps);
        limits = *searchLimits;
        info.heed(limits.mayEndFromOutside() ? &limits : nullptr);
    }
}

RE_Search_Info RE_Match_Sequence::Run::freshState(std::u16string_view subject) {
    const RE_Memory_Account::Scope scope(account);
    return RE_Search_Info(subject.data() != nullptr ? subject.data() : u"", subject.size(),
                          withinSize(tree.getTokenCount()), &table, false);
}

// What is done once, or with limits only, stands by itself: the rest is short then.
void RE_Match_Sequence::Run::use(std::u16string_view subject) {
    isLimited ? turnWithin(subject) : turnTo(subject);
}

// What the searches before hold is given back to the account that it was taken from.
[[gnu::noinline]] void RE_Match_Sequence::Run::turnWithin(std::u16string_view subject) {
    const RE_Memory_Account::Scope scope(account);
    turnTo(subject);
}

void RE_Match_Sequence::Run::turnTo(std::u16string_view subject) {
    const char16_t* const begin = subject.data() != nullptr ? subject.data() : u"";
    if (view) {
        view->subjectBegin = begin;
        view->subjectEnd = begin + subject.size();
    }
    seen = found = memoryFull = clockWasRead = false;
    table.clear();
    info.useSubject(begin, subject.size(), withinSize(tree.getTokenCount()));
    if (info.tokens == nullptr) {
        throw std::bad_alloc();
    }
}

// A search that was broken off leaves states in the memo that it was still exploring: none may follow.
RE_Results* RE_Match_Sequence::Run::find(std::size_t offset, std::size_t latestStart) {
    found = false;
    if (info.tokens == nullptr || info.wasInterrupted()) {
        return nullptr;  // they were released, or the sequence is over
    }
    if (code != nullptr) {
        return searchByCode(offset, latestStart);
    }
    return isLimited ? searchWithin(offset, latestStart) : search(offset, latestStart);
}

[[gnu::noinline]] RE_Results* RE_Match_Sequence::Run::searchWithin(std::size_t offset,
                                                                   std::size_t latestStart) {
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
bool RE_Match_Sequence::Run::isEndedFromOutside() {
    const bool asks = limits.stop.stop_requested() || !clockWasRead;
    clockWasRead = true;
    return asks && info.pollLimits();
}

void RE_Match_Sequence::Run::goOn(std::size_t offset) {
    if (seen) {
        info.searchAgain(offset, view->matchStart + view->matchLength);
    } else if (!prepared) {
        getReady();
    }
}

[[gnu::noinline]] void RE_Match_Sequence::Run::getReady() {
    makeReady(info, tree.getFacts(), !isLimited);
    prepared = tree.getFacts().profiler == nullptr;  // each search counts for itself
    mayRunCode = !isLimited && !info.checkInterrupts && prepared;
}

RE_Results* RE_Match_Sequence::Run::see(std::size_t length) {
    found = seen = true;
    if (!view) {
        return makeView(length);
    }
    view->matchStart = info.indexOf(info.matchStart);
    view->matchLength = length;
    return &*view;
}

[[gnu::noinline]] RE_Results* RE_Match_Sequence::Run::makeView(std::size_t length) {
    return &view.emplace(&info, info.matchStart, length, false);
}

RE_Results* RE_Match_Sequence::Run::search(std::size_t offset, std::size_t latestStart) {
    if (tree.getRoot() == nullptr) {
        return nullptr;
    }
    goOn(offset);
    const RE_Earlier_Interrupt aside(info.checkInterrupts);
    std::size_t length = 0;
    found = findMatch(tree.getFacts(), info, offset, length, latestStart) && !info.pollInterrupt();
    if (mayRunCode) {
        code = tree.getFacts().speedUps.machineCode.get();
    }
    return found ? see(length) : nullptr;
}

// Nobody can break it off.
inline RE_Results* RE_Match_Sequence::Run::searchByCode(std::size_t offset, std::size_t latestStart) {
    const RE_Graph_Facts& facts = tree.getFacts();
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

RE_Results* RE_Match_Sequence::Run::releaseMatch() {
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

RE_Search_Outcome RE_Match_Sequence::Run::outcome() const {
    if (memoryFull) {
        return RE_Search_Outcome::memoryFull;
    }
    const bool complete = !info.wasInterrupted();
    return complete && seen ? RE_Search_Outcome::matched : info.stopReason();
}

RE_Search_Report RE_Match_Sequence::Run::report() const {
    return {outcome(), info.meter.taken(), account.peak()};
}
