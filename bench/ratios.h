// Ratios of our times to those of peers. Zero means that there is no ratio.
#pragma once

#include "bench/runner.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace corvane_bench {

/// Our time by that of the engine with this number; `way` is the number of ours, by the way in which it is called.
double ratioTo(const Row& row, std::size_t engine, std::size_t way = 0);
/// By that of the peer of this name; "best" is the fastest that answers.
double ratioTo(const Row& row, const Engines& engines, std::string_view peer);
double ratioToFloor(const Row& row);
/// Number of the fastest peer that answers; 0, which is ourselves, when none does.
std::size_t bestPeer(const Row& row);

/// Of the ratios that are there; 0 when none is.
double medianOf(std::vector<double> ratios);
double geometricMeanOf(const std::vector<double>& ratios);

}  // namespace corvane_bench
