// How fast the engine shall be, by groups of workloads.
#pragma once

#include <string_view>

namespace corvane_bench {

struct Target {
    std::string_view peer;  ///< whose time counts; "best": the fastest that answers
    double ratio;           ///< the median of our time by the peer's shall not be above it; 0: none is set
};

Target targetOf(std::string_view group);

/// Nanoseconds a unit that a row shall not take more than; 0: none are set.
double mostNanoseconds(std::string_view row);

/// Of the geometric mean of our time by that of PCRE2 with machine code.
inline constexpr double OVERALL_TARGET = 0.7;
/// Of our time by that of a bare scan, in the groups where there is one.
inline constexpr double FLOOR_TARGET = 1.5;

}  // namespace corvane_bench
