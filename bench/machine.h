// What a record of times has to say about where they were taken.
#pragma once

#include <string>

namespace corvane_bench {

std::string processorName();
std::string compilerName();
std::string today();  ///< YYYY-MM-DD

}  // namespace corvane_bench
