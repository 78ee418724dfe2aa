// The engines that were found when the benchmarks were built.
#pragma once

#include "bench/engine.h"

#include <memory>
#include <vector>

namespace corvane_bench {

std::unique_ptr<Engine> makeCorvane();
std::unique_ptr<Engine> makePcre2(bool jit);
std::unique_ptr<Engine> makeIcu();
std::unique_ptr<Engine> makeBoost();
std::unique_ptr<Engine> makeOniguruma();
std::unique_ptr<Engine> makeRe2();
std::unique_ptr<Engine> makeHyperscan();

/// Our engine comes first, then its peers.
std::vector<std::unique_ptr<Engine>> allEngines();

}  // namespace corvane_bench
