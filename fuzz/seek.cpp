// A seek table that was used before, and the state that many searches share, change no answer.
//
// The oracle is each search by itself, with a fresh state. Where a search gives up, the comparison of this
// input ends.
#include "fuzz/targets.h"

namespace corvane_fuzz {
namespace {

using corvane_tests::Engine;

/// One table over searches from every offset.
void compareTables(const Engine& engine, std::u16string_view pattern, std::u16string_view subject) {
    RE_Seek_Table shared;
    for (std::size_t offset = 0; offset <= subject.size(); ++offset) {
        const auto fresh = engine.searchWithin(subject, offset, kLimits);
        if (!fresh) {
            return;
        }
        require(engine.search(subject, offset, shared) == *fresh, "a shared seek table", pattern, subject);
    }
}

/// find_all against single searches from match to match. It leaves out an empty match that directly follows a
/// match.
void compareWalk(const Engine& engine, std::u16string_view pattern, std::u16string_view subject) {
    auto matches = engine.tree().find_all(subject, 0, kLimits);
    std::size_t offset = 0, end = subject.size() + 1;
    for (const RE_Results& match : matches) {
        corvane_tests::Outcome alone;
        do {
            const auto found = engine.searchWithin(subject, offset, kLimits);
            if (!found) {
                return;
            }
            alone = *found;
            offset = alone.start + std::max<std::size_t>(alone.length, 1);
        } while (alone.matched && alone.start + alone.length == end && offset <= subject.size());
        require(alone == corvane_tests::toOutcome(&match), "a walk over all matches", pattern, subject);
        end = alone.start + alone.length;
    }
}

/// Each subject in turn, and each again after the other has used the state.
void compareSubjects(const Engine& engine, std::u16string_view pattern, std::u16string_view first,
                     std::u16string_view second) {
    RE_Match_Sequence sequence(engine.tree(), first, &kLimits);
    for (const std::u16string_view subject : {first, second, first, second.substr(second.size() / 2)}) {
        sequence.use(subject);
        const corvane_tests::Outcome found = corvane_tests::toOutcome(sequence.find(0));
        const auto alone = engine.searchWithin(subject, 0, kLimits);
        if (!alone || !sequence.report().isComplete()) {
            return;
        }
        require(found == *alone, "a sequence of subjects", pattern, subject);
    }
}

}  // namespace

// Text 0 is the pattern, 1 and 2 are subjects.
void seek(const Input& input) {
    const std::u16string_view pattern = input.text(0, 120);
    const std::u16string_view subject = input.text(1, 100);
    const Engine engine(pattern, input.flags(), input.config());
    compareTables(engine, pattern, subject);
    compareWalk(engine, pattern, subject);
    compareSubjects(engine, pattern, subject, input.text(2, 100));
}

}  // namespace corvane_fuzz
