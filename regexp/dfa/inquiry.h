// When a search asks the automaton of its pattern.
//
// Most attempts are over after a few choices, sooner than an automaton would have read the units. A search that has taken
// up so many choices again that it may be about to try the same over and over asks how its attempt ends, and where that
// fails whether any later one can match. A pattern with tokens goes on by itself where there is a match: the automaton
// knows nothing of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

class RE_Dfa;
class RE_Search_Info;
struct RE_Graph_Facts;

/// A search asks after so many choices taken up again. Tests set it to 1 to have every attempt ask.
struct RE_Inquiry_Delay {
    static inline std::uint64_t choices = 16;
};

class RE_Inquiry {
public:
    /// From now on the automaton of the pattern is asked, where it has one.
    void begin(const RE_Graph_Facts& pattern);
    void stop() {
        dfa = nullptr;
        left = never;
    }
    void forgetSubject();

    /// Counts a choice taken up again.
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

    void askForLaterOnes(RE_Search_Info& info);

    const RE_Dfa* dfa = nullptr;
    bool wantsTokens = false;
    std::uint64_t left = never;  // choices until it is asked
    std::uint64_t delay = 0;
    std::size_t unitsRead = 0;  // on behalf of attempts
    const char16_t* found = nullptr;
    const char16_t* hopeless = nullptr;
    // Some match begins at `knownFrom` or behind it, and none of these ends before `knownEnd`.
    const char16_t* knownFrom = nullptr;
    const char16_t* knownEnd = nullptr;
};
