// Which states of the search were tried before and cannot succeed now: when the memo begins, and what it is asked.
//
// Most searches never need it. It begins once so many choices have been left or taken up that the search may be
// about to try the same over and over.
#pragma once

#include "regexp/graph/graph_facts.h"
#include "regexp/state/known_runs.h"
#include "regexp/state/search_memo.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

class CORVANE_REGEXP_EXPORT RE_Known_States : public RE_Known_Runs {
public:
    /// Whether `node` has not yet been tried at this position in this state; records it. Always true while
    /// the memo has not begun.
    bool firstVisit(const RE_Node* node, const char16_t* position);
    /// Whether there are states that it may not hold for.
    bool refusesStates() const { return memo != nullptr; }
    /// The last position in [first, last] at which `firstVisit` may still hold, or null.
    const char16_t* lastUntried(const RE_Node* node, const char16_t* first, const char16_t* last);
    const char16_t* firstUntried(const RE_Node* node, const char16_t* first, const char16_t* last);
    /// Notes that `node` is not worth trying at any position of [first, last] in this state.
    void noteFailed(const RE_Node* node, const char16_t* first, const char16_t* last);

    /// Notes that a node left no choice, as one way only was open there. It counts towards the beginning of
    /// the memo: a loop without choices is gone through from each start again.
    void spareChoice() { countTowardsMemo(); }
    /// The same of choices that are dropped untried, since their body has completed.
    void dropChoices(std::int32_t count) {
        if (count > 0 && memo == nullptr) {
            memoCountdown -=
                std::min<std::uint64_t>(memoCountdown - 1, static_cast<std::uint64_t>(count - 1));
            countTowardsMemo();
        }
    }

    /// How the body of `node` is known to end when it is entered at index `start`.
    RE_Body_Outcome knownOutcome(const RE_Node* node, std::size_t start) const;
    void noteOutcome(const RE_Node* node, std::size_t start, bool completed, std::size_t end);

    /// To be called whenever a node has called the host: states that failed before may not fail now, and must
    /// not be passed over without the calls that they make. The next step asks whether to stop, as a call may
    /// take long.
    void hostWasCalled();

    std::uint64_t refusals = 0;  ///< times a state was turned away because it had been tried before

protected:
    using RE_Known_Runs::RE_Known_Runs;
    ~RE_Known_States() = default;

    /// Choices before the memo begins.
    std::uint64_t memoDelay() const {
        static constexpr RE_Tuning usual;
        const RE_Tuning& tuning = facts != nullptr ? facts->tuning : usual;
        return subjectLength() * tuning.memoChoicesPerUnit + tuning.memoChoices + 1;
    }
    void countTowardsMemo() {
        if (memo == nullptr && --memoCountdown == 0 && facts != nullptr) {
            beginMemo();
        }
    }
    void carryMemoOver(std::size_t offset, std::size_t end);
    /// What is known of the old subject is forgotten. The graph stays.
    void forgetSubject();
    bool refuse() {
        ++refusals;
        return false;
    }

    std::unique_ptr<RE_Search_Memo> memo;
    std::unique_ptr<RE_Search_Memo> idleMemo;  ///< empty; for a later search that needs one
    bool attemptsLeaveNotes = false;           ///< a memo, or what nodes that were made by hand note

private:
    void beginMemo();
};

inline bool RE_Known_States::firstVisit(const RE_Node* node, const char16_t* position) {
    return memo == nullptr || memo->insert(whole(), node, indexOf(position)) || refuse();
}
