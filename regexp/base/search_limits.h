// What a search may spend, and who may end it.
//
//     RE_Search_Report report;
//     const RE_Search_Limits limits{.steps = 1'000'000, .bytes = 16 << 20};
//     std::unique_ptr<RE_Results> match(tree.match(text.data(), text.size(), 0, limits, report));
//     if (!match && report.outcome != RE_Search_Outcome::noMatch) {
//         // nobody knows whether there is a match
//     }
#pragma once

#include "regexp/base/outside_limits.h"
#include "regexp/base/search_report.h"

#include <cstdint>
#include <stop_token>

struct RE_Search_Limits {
    using Time = RE_Outside_Limits::Time;
    static constexpr std::uint64_t unlimited = RE_Outside_Limits::unlimited;
    static constexpr Time noDeadline = RE_Outside_Limits::noDeadline;

    /// A step is one node of the pattern visited, one end of a run tried or 64 units scanned, and is counted
    /// alike on every machine and in every build. One visit may pass the budget by the steps of its scan,
    /// which ends with the subject at the latest.
    std::uint64_t steps = unlimited;
    /// Bytes of the host's memory held at one time. Never passed, but for what a search begins with: a few
    /// words a token.
    std::uint64_t bytes = unlimited;
    /// Any thread may request the search to stop. Looked at before each search and wherever the flag of the host
    /// is polled, whether or not the pattern allows interrupts.
    std::stop_token stop = {};
    /// No search goes on once this time has come. The clock is read before the first search of a subject, and where
    /// the flag is polled.
    Time deadline = noDeadline;

    /// Whether something other than its own work can end the search.
    bool mayEndFromOutside() const { return RE_Outside_Limits::mayEnd(stop, deadline); }
    /// Whether there are any limits.
    bool areAny() const { return steps != unlimited || bytes != unlimited || mayEndFromOutside(); }
    /// Why a search must not go on, for reasons that are not its own work; `noMatch` when it may.
    RE_Search_Outcome askOutside() const {
        switch (RE_Outside_Limits::ask(stop, deadline)) {
            case RE_Outside_Limits::Verdict::cancelled:
                return RE_Search_Outcome::cancelled;
            case RE_Outside_Limits::Verdict::late:
                return RE_Search_Outcome::deadlinePassed;
            case RE_Outside_Limits::Verdict::goOn:
                break;
        }
        return RE_Search_Outcome::noMatch;
    }
};
