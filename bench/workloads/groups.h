// The rows of the benchmarks, by what they are about. The patterns mean the same in every dialect that can
// say them, and none matches the empty text. All engines that can say a pattern have found the expected
// answer.
#pragma once

#include "bench/workload.h"

#include <vector>

namespace corvane_bench {

using Rows = std::vector<Workload>;

Rows literals();
Rows dotStar();
Rows alternations();
Rows classes();  ///< with bounded repeats, and classes beside literals
Rows structure();
Rows everyday();
Rows patternSets();
Rows catastrophic();
Rows compiling();
Rows firstSearches();
Rows large();

}  // namespace corvane_bench
