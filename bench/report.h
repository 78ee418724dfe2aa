// The times of all rows as a page of Markdown.
#pragma once

#include "bench/runner.h"

#include <string>
#include <vector>

namespace corvane_bench {

/// Date, machine, engines; a table for each group; ratios by group against the targets; what stands out.
std::string writeReport(const std::vector<Row>& rows, const Engines& engines);

/// One row in one line: our time, and its ratio to each peer's.
std::string summarize(const Row& row, const Engines& engines);

/// The answers of all engines to a row in one line.
std::string describeAnswers(const Row& row, const Engines& engines);

}  // namespace corvane_bench
