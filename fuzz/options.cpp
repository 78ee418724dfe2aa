// Every setting of the compile options gives the same answer and the same warnings, and the memo changes
// none.
#include "fuzz/targets.h"

namespace corvane_fuzz {

void options(const Input& input) {
    const std::u16string_view pattern = input.text(0, 120);
    const std::u16string_view subject = input.text(1, 120);
    const corvane_tests::Engine plain(pattern, input.flags(), {false, false, false, 0, false});
    beginMemo(false);
    const auto expected = plain.searchWithin(subject, 0, kLimits);
    beginMemo(input.memoAtOnce());
    for (const corvane_tests::EngineConfig& config : corvane_tests::allConfigs()) {
        const corvane_tests::Engine engine(pattern, input.flags(), config);
        require(engine.warnings() == plain.warnings(), "other warnings", pattern);
        const auto found = engine.searchWithin(subject, 0, kLimits);
        require(
            !found || !expected || *found == *expected,
            "plain " + (expected ? describe(*expected) : "") + ", here " + (found ? describe(*found) : ""),
            pattern, subject);
    }
}

}  // namespace corvane_fuzz
