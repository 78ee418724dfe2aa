// How a search ended, and what it took.
#pragma once

#include <cstdint>

enum class RE_Search_Outcome {
    noMatch,
    matched,
    interrupted,  ///< by the flag of the host
    stepsSpent,
    memoryFull,
    cancelled,  ///< by a request to stop
    deadlinePassed
};

struct RE_Search_Report {
    RE_Search_Outcome outcome = RE_Search_Outcome::noMatch;
    std::uint64_t steps = 0;
    std::uint64_t peakBytes = 0;

    /// Whether the search came to its end, so that "no match" is the truth.
    bool isComplete() const {
        return outcome == RE_Search_Outcome::noMatch || outcome == RE_Search_Outcome::matched;
    }
};
