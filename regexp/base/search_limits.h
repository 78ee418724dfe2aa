// What a search may spend, and how it ended.
//
//     RE_Search_Report report;
//     const RE_Search_Limits limits{.steps = 1'000'000, .bytes = 16 << 20};
//     std::unique_ptr<RE_Results> match(tree.match(text.data(), text.size(), 0, limits, report));
//     if (!match && report.outcome != RE_Search_Outcome::noMatch) {
//         // nobody knows whether there is a match
//     }
#pragma once

#include <cstdint>

struct RE_Search_Limits {
    static constexpr std::uint64_t unlimited = static_cast<std::uint64_t>(-1);

    /// A step is one node of the pattern visited, one end of a run tried or 64 units scanned, and is counted
    /// alike on every machine and in every build. One visit may pass the budget by the steps of its scan,
    /// which ends with the subject at the latest.
    std::uint64_t steps = unlimited;
    /// Bytes of the host's memory held at one time. Never passed, but for what a search begins with: a few
    /// words a token.
    std::uint64_t bytes = unlimited;
};

enum class RE_Search_Outcome { noMatch, matched, interrupted, stepsSpent, memoryFull };

struct RE_Search_Report {
    RE_Search_Outcome outcome = RE_Search_Outcome::noMatch;
    std::uint64_t steps = 0;
    std::uint64_t peakBytes = 0;

    /// Whether the search came to its end, so that "no match" is the truth.
    bool isComplete() const {
        return outcome == RE_Search_Outcome::noMatch || outcome == RE_Search_Outcome::matched;
    }
};
