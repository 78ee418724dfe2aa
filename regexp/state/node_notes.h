// What nodes note for the length of an attempt: the counts of loops, and what guards nodes that were made by hand.
#pragma once

#include "regexp/state/known_states.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <utility>
#include <vector>

class CORVANE_REGEXP_EXPORT RE_Node_Notes : public RE_Known_States {
public:
    void pushCount(const RE_Node* counter) {
        attemptsLeaveNotes = true;
        counterStacks[counter].push_back(0);
    }
    void incrementCount(const RE_Node* counter) { ++topCount(counter); }
    void decrementCount(const RE_Node* counter);
    /// The count `depth` levels below the top of this counter's stack; 0 where there is none.
    std::uint64_t countAt(const RE_Node* counter, std::size_t depth) const;
    void popCount(const RE_Node* counter);

    // Plain writes to a token, for nodes made by hand. Nothing is put on the trail.
    void startToken(std::size_t index, const char16_t* name, const char16_t* p);
    void endToken(std::size_t index, const char16_t* p, bool invalidate);

    using Counts = std::vector<std::uint64_t, RE_Allocator<std::uint64_t>>;
    std::map<const RE_Node*, Counts, std::less<const RE_Node*>,
             RE_Allocator<std::pair<const RE_Node* const, Counts>>>
        counterStacks;

    /// States already pushed by nodes that were not made by the parser, per count of recorded tokens.
    using State = std::pair<const RE_Node*, const char16_t*>;
    using States = std::set<State, std::less<State>, RE_Allocator<State>>;
    std::vector<States, RE_Allocator<States>> visited;

protected:
    using RE_Known_States::RE_Known_States;
    ~RE_Node_Notes() = default;

    /// Leaves a choice of a node that nobody vouches for. False where `visited` or the stack says that it was
    /// left already.
    bool pushUnguarded(const RE_Node* node, const char16_t* position, bool newRecord);
    void forgetNotes();
    /// The same of the nodes themselves, which may be gone.
    void forgetNodes() {
        counterStacks.clear();
        visited.clear();
    }

private:
    std::uint64_t& topCount(const RE_Node* counter);
    bool isDuplicate(const RE_Node* node, const char16_t* position) const;
    void writeReused(const RE_Node* node, const char16_t* position);
};
