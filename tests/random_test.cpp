// Random patterns of the whole dialect against the reference matcher. A failure prints its seed:
// CORVANE_TEST_SEED repeats it, CORVANE_TEST_ROUNDS sets the number of patterns.
#include "tests/support/differential.h"
#include "tests/support/pattern_random.h"

#include <gtest/gtest.h>

namespace corvane_tests {
namespace {

RE_Flags randomFlags(PatternSource& source) {
    RE_Flags flags = source.below(2) == 0 ? kPlain : kEmptyToo;
    flags |= source.below(8) == 0 ? 0x01U : 0U;
    flags |= source.below(6) == 0 ? 0x04U : 0U;
    flags &= source.below(6) == 0 ? ~RE_Flags{0x02U} : ~RE_Flags{0};
    return flags;
}

void compareRandomPatterns(const PatternTraits& traits, std::uint64_t seed, unsigned long rounds) {
    Comparison comparison;
    PatternSource source(seed);
    for (unsigned long round = 0; round < rounds; ++round) {
        const std::u16string pattern = widen(source.pattern(traits));
        const RE_Flags flags = randomFlags(source);
        const EngineConfig& config = allConfigs()[source.below(allConfigs().size())];
        std::vector<std::u16string> subjects;
        for (int count = 0; count < 4; ++count) {
            subjects.push_back(source.subject(9));
        }
        comparison.run(pattern, flags, config, subjects, source.below(4) == 0);
    }
    EXPECT_GT(comparison.compared(), rounds);
    EXPECT_EQ("", comparison.report()) << "CORVANE_TEST_SEED=" << seed << " repeats this run";
}

std::uint64_t seedFor(std::uint64_t fallback) {
    return environmentNumber("CORVANE_TEST_SEED", fallback);
}

unsigned long rounds(unsigned long plain) {
    return environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? plain / 12 : plain);
}

/// The memo begins with the first choice taken up again, and needed literals are asked for behind each start, which
/// searches this small would not reach.
TEST(EagerMemo, LosesNoMatchAndNoToken) {
    const Delays delays(0, 0, 0);
    compareRandomPatterns({}, seedFor(1968), rounds(30000));
    PatternTraits loops;
    loops.references = loops.conditions = loops.lookarounds = loops.words = loops.modes = false;
    compareRandomPatterns(loops, seedFor(1969), rounds(20000));
}

TEST(RandomPatterns, OfTheWholeDialectAgreeWithTheReference) {
    compareRandomPatterns({}, seedFor(20240611), rounds(30000));
}

TEST(RandomPatterns, WithoutTokenReadersAgreeWithTheReference) {
    PatternTraits traits;
    traits.references = false;
    traits.conditions = false;
    compareRandomPatterns(traits, seedFor(77), rounds(20000));
}

// What is remembered of long runs and stretches only comes into play there; the plain graph remembers none of it.
TEST(RandomPatterns, FindTheSameInLongRunsAsThePlainGraph) {
    PatternSource source(seedFor(5150));
    PatternTraits traits;
    for (unsigned long round = rounds(3000); round > 0; --round) {
        traits.references = round % 2 == 0;
        const std::u16string pattern = widen(source.pattern(traits));
        const RE_Flags flags = randomFlags(source);
        const Engine fast(pattern, flags), plain(pattern, flags, {false, false, false, 0, false});
        const std::u16string subject = source.runs(7, 150);
        const auto expected = plain.searchWithin(subject, 0, {.steps = 20000});
        const auto got = fast.searchWithin(subject, 0, {.steps = 20000});
        ASSERT_TRUE(!expected || !got || *expected == *got) << printable(pattern) << " on " << printable(subject);
    }
}

TEST(RandomPatterns, OfLoopsAndGroupsAloneAgreeWithTheReference) {
    PatternTraits traits;
    traits.references = traits.conditions = traits.lookarounds = traits.words = traits.modes = false;
    compareRandomPatterns(traits, seedFor(4711), rounds(20000));
}

}  // namespace
}  // namespace corvane_tests
