// When a search asks the automaton of its pattern.
//
// Most attempts are over after a few choices, sooner than an automaton would have read the units. A search
// that has left or taken up so many choices that it may be about to try the same over and over asks how its
// attempt ends. A pattern with tokens goes on by itself where there is a match: the automaton knows nothing
// of them.
//
// Where attempts fail and have cost more than the way that they brought the search on, it asks besides
// whether a later one can match. Seeking is faster than the automaton, so it looks no further than in
// proportion to that cost.
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
    /// From now on the automaton of the pattern is asked, where it has one.
    void begin(const RE_Graph_Facts& pattern);
    void stop() {
        dfa = nullptr;
        left = never;
    }
    void forgetSubject() {
        if (knowsSubject) {
            *this = forOtherSubject();
        }
    }

    /// Counts a choice.
    bool isDue() { return --left == 0; }
    /// Asks about the attempt. False when it is over: then `takeEnd` tells of a match.
    bool goesOn(RE_Search_Info& info);
    /// Where the attempt was found to match. True once.
    bool takeEnd(const char16_t*& end) {
        if (found == nullptr) {
            return false;
        }
        end = found;
        found = nullptr;
        return true;
    }
    /// Whether no match begins at `start` or behind it.
    bool isHopeless(const char16_t* start) const { return hopeless != nullptr && start >= hopeless; }

private:
    static constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();

    RE_Inquiry forOtherSubject() const;
    void askForLaterOnes(RE_Search_Info& info);

    const RE_Dfa* dfa = nullptr;
    bool hasManyStarts = false;
    bool wantsTokens = false;
    std::uint64_t left = never;  // choices until it is asked
    std::uint64_t delay = 0;
    bool knowsSubject = false;
    std::uint64_t cost = 0;        // of attempts, as the automaton would read so many units in the time
    std::uint64_t unitsRead = 0;   // on behalf of attempts
    std::uint64_t costAtLast = 0;  // when the search asked for later ones last
    const char16_t* found = nullptr;
    const char16_t* hopeless = nullptr;
    // No match that begins at `knownFrom` or behind it ends before `knownEnd`, where one does or the search
    // stopped looking.
    const char16_t* knownFrom = nullptr;
    const char16_t* knownEnd = nullptr;
};
