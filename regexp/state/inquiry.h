// When a search queries the automaton of its pattern, and what it concludes.
//
// Most attempts are over after a few choices, sooner than an automaton would have read the units. A search
// that has left or taken up so many choices that it may be about to try the same over and over queries how
// its attempt ends. A pattern with tokens continues by itself where there is a match: the automaton knows
// nothing of tokens.
//
// Where attempts fail and have cost more than the units that they brought the search on, it queries besides
// whether a later one can match. Seeking is faster than the automaton, so it looks no further ahead than in
// proportion to that cost.
//
// All of it decides about time only: the automaton's answers are those of the match loop.
#pragma once

#include "regexp/base/export.h"

#include <cstddef>
#include <cstdint>
#include <limits>

class RE_Dfa;
class RE_Search_Info;
struct RE_Graph_Facts;

class CORVANE_REGEXP_EXPORT RE_Inquiry {
public:
    /// From now on the automaton of the pattern is queried, where it has one or gets one.
    void begin(const RE_Graph_Facts& graphFacts);
    /// For what the automaton does not describe: no query is due any more.
    void stop() {
        pattern = nullptr;
        dfa = nullptr;
        left = never;
    }
    void forgetSubject() {
        if (knowsSubject) {
            *this = forOtherSubject();
        }
    }

    /// Counts a choice. True when a query is due.
    bool isDue() { return --left == 0; }
    /// Queries how the attempt ends. True when the match loop has to continue; false when the attempt is
    /// over: then `takeEnd` tells of a match.
    bool goesOn(RE_Search_Info& info);
    /// The end of the match that the query has found, once.
    bool takeEnd(const char16_t*& end) {
        if (found == nullptr) {
            return false;
        }
        end = found;
        found = nullptr;
        return true;
    }
    /// Whether it is known that no match begins at `start` or after it.
    bool isHopeless(const char16_t* start) const { return hopeless != nullptr && start >= hopeless; }

private:
    static constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();

    RE_Inquiry forOtherSubject() const;
    void use(const RE_Dfa* automaton);
    bool hasAutomaton(const RE_Search_Info& info);
    void queryLaterStarts(RE_Search_Info& info);

    const RE_Graph_Facts* pattern = nullptr;
    const RE_Dfa* dfa = nullptr;  // null as long as the pattern has none
    bool hasManyStarts = false;
    bool wantsTokens = false;
    std::uint64_t left = never;  // choices until the next query
    std::uint64_t delay = 0;
    bool knowsSubject = false;
    std::uint64_t cost = 0;        // of attempts, as the automaton would read so many units in the time
    std::uint64_t unitsRead = 0;   // on behalf of attempts
    std::uint64_t costAtLast = 0;  // at the last query about later starts
    const char16_t* found = nullptr;
    const char16_t* hopeless = nullptr;
    // No match that begins at or after `knownFrom` ends before `knownEnd`: there one does, or the search
    // stopped looking. So until a start passes it there is no use in another query.
    const char16_t* knownFrom = nullptr;
    const char16_t* knownEnd = nullptr;
};
