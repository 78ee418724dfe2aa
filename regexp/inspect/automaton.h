// A compiled pattern as an automaton over letters, to reason about the ways through a text.
//
// A state stands for a unit that was just consumed: by a unit test, at a place within a string, in a
// repetition. Two states stand for the search: nothing skipped yet, and some units skipped. The automaton allows every way that a search can take,
// and some that it cannot: counts and the conditions of anchors and assertions are ignored.
#pragma once

#include "regexp/dfa/alphabet.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <tuple>
#include <vector>

class RE_Node;
class RE_Tree;

struct RE_Automaton_Edge {
    std::size_t target;
    RE_Letters letters;  ///< that may be consumed on the way
};

struct RE_Automaton_State {
    const RE_Node* node = nullptr;
    std::vector<RE_Automaton_Edge> edges{};  ///< as many to one target as there are ways
    bool accepting = false;                  ///< nothing can keep a search from success here
};

class RE_Automaton {
public:
    static constexpr std::size_t begin = 0;     ///< at the start of the text
    static constexpr std::size_t skipping = 1;  ///< the search has moved its start
    static constexpr std::size_t greatest = 1000;

    explicit RE_Automaton(const RE_Tree& tree);

    /// False when the pattern is too large for this, or is not known as a whole.
    bool isComplete() const { return complete; }
    const std::vector<RE_Automaton_State>& states() const { return all; }
    /// A unit of this letter, one that can be printed where there is one.
    char16_t unitOf(std::size_t letter) const { return alphabet.unitOf(letter); }
    std::size_t letterCount() const { return alphabet.size(); }

private:
    /// What a way without consuming has met so far.
    struct Way {
        RE_Node* node;
        RE_Letters allowed;    ///< next units that earlier nodes on the way leave open
        std::uint64_t passes;  ///< loops of which a pass has begun on the way
        bool conditional;      ///< something on the way may fail
    };
    struct Way_Order {
        bool operator()(const Way& a, const Way& b) const;
    };

    void noteBodyEnds(const RE_Tree& tree);
    std::size_t addState(const RE_Node* node);
    /// The states of a consuming node, in order; made on first use.
    const std::vector<std::size_t>& statesOf(RE_Node* node, std::uint64_t count);
    void addWays(std::size_t from, Way first);
    void follow(Way way, RE_Node* target);
    struct Reader;  ///< of what the nodes mean
    void addTexts(std::size_t from, const Way& way);
    void continueBehind(RE_Node* node, const std::vector<std::size_t>& own, std::size_t index);
    void addUnknown(std::size_t from, const Way& way);
    void addEdge(std::size_t from, std::size_t target, const RE_Letters& letters);

    bool complete = true;
    std::vector<RE_Automaton_State> all;
    RE_Alphabet alphabet;
    RE_Letters any;
    std::map<const RE_Node*, std::vector<std::size_t>> nodeStates;
    std::map<const RE_Node*, RE_Node*> behindBody;  // the end of an atomic body -> what follows the group
    std::vector<std::pair<RE_Node*, std::size_t>>
        unfinished;                     // consuming nodes whose ways on are not known yet
    std::map<Way, int, Way_Order> met;  // of one closure
    std::vector<Way> pending;
    std::size_t followed = 0;
};
