// The table of targets. Groups that are not in it shall be as fast as PCRE2 with machine code.
#include "bench/targets.h"

#include <map>

namespace corvane_bench {

Target targetOf(std::string_view group) {
    // Group, and the peer by whose time the ratio is taken. "best" where a peer gives up on some rows: then
    // whoever answers is the measure.
    static const std::map<std::string_view, Target> targets = {
        {"literals", {"PCRE2 JIT", 0.6}},
        {"dot-star", {"PCRE2 JIT", 0.6}},
        {"alternations", {"PCRE2 JIT", 0.25}},
        {"catastrophic", {"best", 1}},
        {"quadratic", {"best", 1}},
        {"compile small", {"PCRE2", 1}},
        {"compile medium", {"PCRE2", 1}},
        {"compile large", {"PCRE2", 1}},
        {"first search", {"PCRE2", 1.5}},
        {"ten million", {"PCRE2 JIT", 0}},
    };
    const auto found = targets.find(group);
    return found == targets.end() ? Target{"PCRE2 JIT", 1} : found->second;
}

double mostNanoseconds(std::string_view row) {
    return row == "alternations/2000 literals" ? 3 : 0;
}

}  // namespace corvane_bench
