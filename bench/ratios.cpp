// Ratios and their means. A ratio that cannot be had is 0 and left out of every mean: a peer without an
// answer neither helps nor harms.
#include "bench/ratios.h"

#include <algorithm>
#include <cmath>

namespace corvane_bench {

double ratioTo(const Row& row, std::size_t engine, std::size_t way) {
    const Cell& ours = row.cells[way];
    const Cell& peer = row.cells[engine];
    const bool both = ours.outcome == Outcome::timed && peer.outcome == Outcome::timed;
    return both && peer.seconds > 0 ? ours.seconds / peer.seconds : 0;
}

double ratioTo(const Row& row, const Engines& engines, std::string_view peer) {
    if (peer == "best") {
        const std::size_t best = bestPeer(row);
        return best == 0 ? 0 : ratioTo(row, best);
    }
    const auto found = std::find_if(engines.begin(), engines.end(),
                                    [peer](const auto& engine) { return engine->name() == peer; });
    return found == engines.end() ? 0 : ratioTo(row, static_cast<std::size_t>(found - engines.begin()));
}

double ratioToFloor(const Row& row) {
    const Cell& ours = row.cells.front();
    return ours.outcome == Outcome::timed && row.floorSeconds > 0 ? ours.seconds / row.floorSeconds : 0;
}

// Over the cells with a time.
std::size_t bestPeer(const Row& row) {
    std::size_t best = 0;
    for (std::size_t i = 1; i < row.cells.size(); ++i) {
        if (row.cells[i].isPeer && row.cells[i].outcome == Outcome::timed &&
            (best == 0 || row.cells[i].seconds < row.cells[best].seconds)) {
            best = i;
        }
    }
    return best;
}

double medianOf(std::vector<double> ratios) {
    std::erase(ratios, 0.0);
    if (ratios.empty()) {
        return 0;
    }
    std::sort(ratios.begin(), ratios.end());
    const std::size_t middle = ratios.size() / 2;
    // Of two middle ratios the geometric mean: 1/2 and 2 have the median 1.
    return ratios.size() % 2 == 1 ? ratios[middle] : std::sqrt(ratios[middle - 1] * ratios[middle]);
}

// A mean of ratios has to be geometric, or twice as fast and half as fast would not even out.
double geometricMeanOf(const std::vector<double>& ratios) {
    double logarithms = 0;
    std::size_t count = 0;
    for (const double ratio : ratios) {
        if (ratio > 0) {
            logarithms += std::log(ratio);
            ++count;
        }
    }
    return count == 0 ? 0 : std::exp(logarithms / static_cast<double>(count));
}

}  // namespace corvane_bench
