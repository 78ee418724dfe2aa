// The settings of the compile options all give the same answer and the same warnings, and the memo changes
// none.
//
// The oracle is the plain graph, searched with the usual delays. A setting that gives up at the limits is not
// compared.
#include "fuzz/targets.h"

namespace corvane_fuzz {

void options(const Input& input) {
    const std::u16string_view pattern = input.text(0, 120);
    const std::u16string_view subject = input.text(1, 120);
    const corvane_tests::Engine plain(pattern, input.flags(), {false, false, false, 0, false});
    beginMemo(false);
    const auto expected = plain.searchWithin(subject, 0, kLimits);
    beginMemo(input.memoAtOnce());
    // An input tries one setting in four: compiling takes most of the time.
    const std::vector<corvane_tests::EngineConfig>& configs = corvane_tests::allConfigs();
    for (std::size_t index = input.number() % 4; index < configs.size(); index += 4) {
        const corvane_tests::EngineConfig& config = configs[index];
        const corvane_tests::Engine engine(pattern, input.flags(), config);
        require(engine.warnings() == plain.warnings(), "other warnings", pattern);
        // Searches under limits do not consult the automaton.
        const auto found =
            config.dfa && expected ? engine.search(subject) : engine.searchWithin(subject, 0, kLimits);
        require(
            !found || !expected || *found == *expected,
            "plain " + (expected ? describe(*expected) : "") + ", here " + (found ? describe(*found) : ""),
            pattern, subject);
    }
}

}  // namespace corvane_fuzz
