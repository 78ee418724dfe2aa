// Begins the memo, asks it, and carries it from one search to the next.
#include "regexp/state/known_states.h"

#include "regexp/state/search_info.h"

#include <utility>

void RE_Known_States::beginMemo() {
    memo = std::move(idleMemo);
    if (memo == nullptr) {
        memo = std::make_unique<RE_Search_Memo>(facts->firstCombinedRow());
    }
    attemptsLeaveNotes = knowsSubject = true;
}

// Where failures outlive a start the memo goes on: all searches together cost what one would. Elsewhere it
// would begin empty at every start, so it waits until a search needs it. A search from within the match may meet any of
// the states on the way of the match, which have not failed, and nothing tells them from the others.
void RE_Known_States::carryMemoOver(std::size_t offset, std::size_t end) {
    if (facts->memoOutlivesStarts()) {
        offset >= end ? memo->searchFrom(end) : memo->forgetStates();
    } else {
        memo->forgetStates();
        idleMemo = std::move(memo);
        memoCountdown = memoDelay();
    }
}

// Where memory is counted a memo does not outlive its subject: what a search takes must not depend on those before it.
void RE_Known_States::forgetSubject() {
    runs.clear();
    barren.clear();
    if (memo != nullptr && !RE_Memory_Account::isOpen()) {
        memo->forgetSubject();
        idleMemo = std::move(memo);
    }
    memo.reset();
    knowsSubject = false;
}

const char16_t* RE_Known_States::lastUntried(const RE_Node* node, const char16_t* first,
                                             const char16_t* last) {
    if (memo == nullptr) {
        return last;
    }
    const std::size_t found = memo->lastUntried(whole(), node, indexOf(first), indexOf(last));
    refusals += found == indexOf(last) ? 0 : 1;
    return found == RE_Memo_Table::nowhere ? nullptr : subjectBegin + found;
}

const char16_t* RE_Known_States::firstUntried(const RE_Node* node, const char16_t* first,
                                              const char16_t* last) {
    if (memo == nullptr) {
        return first;
    }
    const std::size_t found = memo->firstUntried(whole(), node, indexOf(first), indexOf(last));
    refusals += found == indexOf(first) ? 0 : 1;
    return found == RE_Memo_Table::nowhere ? nullptr : subjectBegin + found;
}

void RE_Known_States::noteFailed(const RE_Node* node, const char16_t* first, const char16_t* last) {
    if (memo != nullptr && first <= last) {
        memo->insertAll(whole(), node, indexOf(first), indexOf(last));
    }
}

RE_Body_Outcome RE_Known_States::knownOutcome(const RE_Node* node, std::size_t start) const {
    return memo != nullptr && facts->memoOutlivesStarts() ? memo->outcome(node, start) : RE_Body_Outcome{};
}

void RE_Known_States::noteOutcome(const RE_Node* node, std::size_t start, bool completed, std::size_t end) {
    using Kind = RE_Body_Outcome::Kind;
    if (memo != nullptr && facts->memoOutlivesStarts() && !wasInterrupted()) {
        memo->noteOutcome(node, start, {completed ? Kind::completed : Kind::failed, end});
    }
}

void RE_Known_States::hostWasCalled() {
    steps = 0;
    if (memo != nullptr) {
        memo->forgetStates();
    }
}
