// The engines that were found when the benchmarks were built.
#pragma once

#include "bench/engine.h"

#include <memory>
#include <vector>

namespace corvane_bench {

/// How an application calls our engine.
enum class Call {
    sequence,  ///< by `find_all` or a match sequence; nothing is called for speed
    match,     ///< by `RE_Tree::match` in a loop, with a seek table; nothing is called for speed
    asked      ///< as `sequence`, after machine code and automaton were asked for
};
std::unique_ptr<Engine> makeCorvane(Call call);
std::unique_ptr<Engine> makePcre2(bool jit);
std::unique_ptr<Engine> makeIcu();
std::unique_ptr<Engine> makeBoost();
std::unique_ptr<Engine> makeOniguruma();
std::unique_ptr<Engine> makeRe2();
std::unique_ptr<Engine> makeHyperscan();

/// Our engine comes first, by all ways of calling it, then its peers.
std::vector<std::unique_ptr<Engine>> allEngines();

}  // namespace corvane_bench
