// Random patterns of the whole dialect: the plain graph against the reference matcher, and all settings against the
// plain graph. A failure prints its seed: CORVANE_TEST_SEED repeats it, CORVANE_TEST_ROUNDS sets the number of
// patterns.
//
// Two comparisons in place of one, because the reference gives up on long searches: it judges the plain graph where it
// can, and the plain graph, which is simple and slow, judges every setting everywhere. Calls of the host are compared
// too.
#include "tests/support/differential.h"
#include "tests/support/pattern_random.h"
#include "tests/support/subject_random.h"

#include <gtest/gtest.h>

#include <sstream>

namespace corvane_tests {
namespace {

constexpr unsigned kTokenReaders = kReferences | kConditions | kDynamics;

const EngineConfig& someConfig(PatternSource& source) {
    return allConfigs()[source.below(allConfigs().size())];
}

std::uint64_t seedFor(std::uint64_t fallback) {
    return environmentNumber("CORVANE_TEST_SEED", static_cast<unsigned long>(fallback));
}

unsigned long rounds(unsigned long plain) {
    return environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? plain / 12 : plain);
}

/// What a run of comparisons has to show for itself.
void expectAgreement(const Comparison& comparison, std::uint64_t seed) {
    EXPECT_EQ("", comparison.report()) << "CORVANE_TEST_SEED=" << seed << " repeats this run";
    EXPECT_GT(comparison.judged() * 5, comparison.compared()) << "the reference gives up too often";
    EXPECT_GT(comparison.matched() * 3, comparison.judged()) << "too little is found to compare";
}

/// Constructs in contexts, under settings that are drawn: each comes up hundreds of times.
void compareSweep(unsigned without, std::uint64_t seed, unsigned long patterns) {
    Comparison comparison;
    PatternSource source(seed);
    for (unsigned long round = 0; round < patterns; ++round) {
        const DrawnPattern pattern = source.draw(without);
        comparison.referee(source, pattern, {someConfig(source), someConfig(source)});
    }
    expectAgreement(comparison, seed);
}

/// Constructs side by side and in each other with little else around, over two letters: faults of a pair of constructs
/// that other parts of a pattern would hide.
void compareDense(unsigned without, std::uint64_t seed, unsigned long patterns) {
    Comparison comparison;
    PatternSource source(seed);
    for (unsigned long round = 0; round < patterns; ++round) {
        const DrawnPattern pattern = source.drawDense(without);
        comparison.refereeDense(source, pattern, {EngineConfig(), someConfig(source)});
    }
    expectAgreement(comparison, seed);
}

// A test of the tests: a construct that no draw brings into a context is not tested there. A pair that cannot be drawn
// has a reason in the tables, and only the known reasons count.
TEST(RandomPatterns, BringEveryConstructIntoEveryContext) {
    PatternSource source(1);
    for (size_t left = PatternSource::sweep(); left > 0; --left) {
        source.draw();
    }
    const Coverage& coverage = source.coverage();
    const size_t leaves = leafConstructs().size();
    std::ostringstream missing;
    std::set<std::string> impossible;
    for (size_t context = 0; context < coverage.contexts(); ++context) {
        for (size_t construct = 0; construct < coverage.constructs(); ++construct) {
            const std::string cell = printable(Coverage::construct(construct).text) + "  in  " +
                                     printable(Coverage::construct(leaves + context).text) + "\n";
            const bool drawn = coverage.count(construct, context) > 0;
            if (Coverage::isPossible(construct, context)) {
                missing << (drawn ? "" : cell);
            } else {
                EXPECT_FALSE(drawn) << cell;
                impossible.insert(contextConstructs()[context].barReason);
            }
        }
    }
    EXPECT_EQ("", missing.str());
    EXPECT_EQ((std::set<std::string>{"it has no longest match", "its bracket would be paired with another"}),
              impossible);
}

TEST(RandomPatterns, OfEveryConstructInEveryContextAgree) {
    compareSweep(0, seedFor(20240611), rounds(16000));
}

TEST(RandomPatterns, OfTwoConstructsAloneAgree) {
    compareDense(0, seedFor(11), rounds(22000));
}

// What failed is remembered from start to start where nothing reads tokens.
TEST(RandomPatterns, WithoutTokenReadersAgree) {
    compareSweep(kTokenReaders, seedFor(77), rounds(6000));
}

// Without a plan: patterns in which no construct was placed on purpose.
TEST(RandomPatterns, OfWhatChanceBringsAgree) {
    Comparison comparison;
    const std::uint64_t seed = seedFor(4711);
    PatternSource source(seed);
    for (unsigned long round = rounds(8000); round > 0; --round) {
        const unsigned without = round % 2 == 0 ? 0 : kTokenReaders | kLookarounds | kModes;
        const RE_Flags flags = round % 3 == 0 ? kPlain : kEmptyToo;
        comparison.referee(source, {source.pattern(without), flags}, {EngineConfig(), someConfig(source)});
    }
    expectAgreement(comparison, seed);
}

/// The memo begins with the first choice that is resumed, and needed literals are searched for after each start, which
/// searches this small would not reach.
TEST(EagerMemo, LosesNoMatchAndNoToken) {
    const Delays delays(0, 0, 0);
    compareSweep(0, seedFor(1968), rounds(7000));
    compareDense(kTokenReaders, seedFor(1969), rounds(6000));
}

// What is remembered of long runs and stretches only comes into play there; the plain graph remembers none of it.
TEST(RandomPatterns, FindTheSameInLongRunsAsThePlainGraph) {
    PatternSource source(seedFor(5150));
    for (unsigned long round = rounds(3000); round > 0; --round) {
        const DrawnPattern drawn = source.draw(round % 2 == 0 ? kDynamics : kTokenReaders);
        const Engine fast(drawn.text, drawn.flags), plain(drawn.text, drawn.flags, kPlainGraph);
        const std::u16string subject = source.runs(7, 150);
        const auto expected = plain.searchWithin(subject, 0, {.steps = 20000});
        const auto got = fast.searchWithin(subject, 0, {.steps = 20000});
        ASSERT_TRUE(!expected || !got || *expected == *got) << printable(drawn.text) << " on " << printable(subject);
    }
}

}  // namespace
}  // namespace corvane_tests
