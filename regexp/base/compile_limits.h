// What compiling a pattern or a replacement may spend, who may end it, and how it ended.
//
//     RE_Compile_Report report;
//     const RE_Compile_Limits limits{.units = 2'000, .nodes = 10'000, .bytes = 1 << 20};
//     const RE_Tree tree(pattern.data(), pattern.size(), flags, &context, limits, report);
//     if (!tree.isCompiled()) {
//         // report.outcome says why, report.position where; the tree matches nothing
//     }
#pragma once

#include "regexp/base/outside_limits.h"

#include <cstddef>
#include <cstdint>
#include <stop_token>

enum class RE_Compile_Outcome {
    compiled,
    unitsExceeded,
    nodesExceeded,
    workSpent,
    memoryFull,
    deadlinePassed,
    interrupted,  ///< by the flag of the host
    cancelled     ///< by a request to stop
};

/// All limits are off at first. A text that passes one is refused as a whole: nothing is compiled in part.
struct RE_Compile_Limits {
    using Time = RE_Outside_Limits::Time;
    static constexpr std::uint64_t unlimited = RE_Outside_Limits::unlimited;
    static constexpr Time noDeadline = RE_Outside_Limits::noDeadline;

    /// Code units of the text.
    std::uint64_t units = unlimited;
    /// Nodes that are made, those that passes drop again included: copies of a repeated group count once each.
    std::uint64_t nodes = unlimited;
    /// One unit of work is an item read, measured or built, a node made or passed by a walk over the graph, a state of
    /// what is concluded about it: some hundred nanoseconds at most. Counted alike on every machine and in every build.
    std::uint64_t work = unlimited;
    /// Bytes of the host's memory held at one time: never passed. Afterwards they also bound what the compiled pattern
    /// holds together with its automaton and its machine code, which are not made where they do not fit.
    std::uint64_t bytes = unlimited;
    /// Any thread may request compiling to stop.
    std::stop_token stop = {};
    /// Compiling does not go on once this time has come.
    Time deadline = noDeadline;

    /// Why compiling must not go on, for reasons that are not its own work; `compiled` when it may.
    RE_Compile_Outcome askOutside() const {
        switch (RE_Outside_Limits::ask(stop, deadline)) {
            case RE_Outside_Limits::Verdict::cancelled:
                return RE_Compile_Outcome::cancelled;
            case RE_Outside_Limits::Verdict::late:
                return RE_Compile_Outcome::deadlinePassed;
            case RE_Outside_Limits::Verdict::goOn:
                break;
        }
        return RE_Compile_Outcome::compiled;
    }
};

struct RE_Compile_Report {
    RE_Compile_Outcome outcome = RE_Compile_Outcome::compiled;
    std::size_t position =
        0;  ///< index of the unit at which the text was refused; 0 where all of it is to blame
    std::uint64_t nodes = 0;
    std::uint64_t work = 0;
    std::uint64_t peakBytes = 0;

    /// Whether the text itself was refused. Otherwise it was compiled, or somebody did not want to wait.
    bool isRefused() const {
        return outcome != RE_Compile_Outcome::compiled && outcome != RE_Compile_Outcome::interrupted &&
               outcome != RE_Compile_Outcome::cancelled;
    }
};
