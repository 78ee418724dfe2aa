// The list of engines; CMake says which of the peers are there. The order is that of the columns, and ours
// comes first: the runner and the ratios rely on that.
#include "bench/engines/engines.h"

namespace corvane_bench {

std::vector<std::unique_ptr<Engine>> allEngines() {
    std::vector<std::unique_ptr<Engine>> engines;
    for (const Call call : {Call::sequence, Call::match, Call::asked}) {
        engines.push_back(makeCorvane(call));
    }
#ifdef CORVANE_BENCH_PCRE2
    engines.push_back(makePcre2(true));
    engines.push_back(makePcre2(false));
#endif
#ifdef CORVANE_BENCH_ICU
    engines.push_back(makeIcu());
#endif
#ifdef CORVANE_BENCH_BOOST
    engines.push_back(makeBoost());
#endif
#ifdef CORVANE_BENCH_ONIGURUMA
    engines.push_back(makeOniguruma());
#endif
#ifdef CORVANE_BENCH_RE2
    engines.push_back(makeRe2());
#endif
#ifdef CORVANE_BENCH_HYPERSCAN
    engines.push_back(makeHyperscan());
#endif
    return engines;
}

}  // namespace corvane_bench
