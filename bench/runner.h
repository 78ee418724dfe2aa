// Runs a workload with every engine: the answers first, then the times of those whose answer is right.
#pragma once

#include "bench/engine.h"
#include "bench/workload.h"

#include <memory>
#include <vector>

namespace corvane_bench {

enum class Outcome {
    timed,
    unsupported,  ///< the dialect cannot say it, or the engine has no such task
    differs,      ///< another answer than expected
    gaveUp,       ///< a limit of the engine's own stopped it
};

struct Cell {
    Outcome outcome = Outcome::unsupported;
    Answer answer;
    bool isPeer = false;
    double seconds = 0;  ///< processor time of one run: the median of the repetitions
};

struct Row {
    const Workload* workload = nullptr;
    double amount = 1;        ///< units or lines of the text; 1 when a compilation is timed
    std::vector<Cell> cells;  ///< one for each engine
    double floorSeconds = 0;  ///< of the bare scan; 0 where there is none
};

struct Settings {
    double leastSeconds;  ///< of one repetition
    int repetitions;
};

using Engines = std::vector<std::unique_ptr<Engine>>;

/// Fills in everything but the times.
Row checkAnswers(const Workload& workload, const Engines& engines);

/// Fills in the times. Repetitions of the engines take turns, so that a noisy moment of the machine hits all
/// alike.
void measure(Row& row, const Engines& engines, const Settings& settings);

}  // namespace corvane_bench
