// Groups that may match the empty text, repeated: a plain `?` takes the empty way like any other, required passes count
// however many they are, and optional passes of loops consume.
//
// The oracle is reference::searchByEnds, which lists all ends of every part in order of preference. The usual reference
// would try the ways one by one, of which hundreds of passes have too many.
#include "tests/support/differential.h"
#include "tests/support/nullable_patterns.h"
#include "tests/support/reference_ends.h"

#include <gtest/gtest.h>

namespace corvane_tests {
namespace {

// Quantifiers that a few passes exhaust, each in its three preferences.
constexpr const char* kFewPasses[] = {"?",    "??",    "?+",    "{0,1}", "{0,1}?", "{0,1}+", "*",
                                      "*?",   "+",     "+?",    "*+",    "{2}",    "{3,4}?", "{5}",
                                      "{4,}", "{6,}?", "{0,2}", "{1,2}", "{2}?",   "{1,3}?"};
// Among them counts beyond those at which the engine stops making passes one by one: 256, 512, the subject's length.
constexpr const char* kManyPasses[] = {"?",      "*",      "+?",     "{2,}",     "{20}",        "{20,}",
                                       "{20,}?", "{300}",  "{300,}", "{300,}?",  "{300,400}",   "{300,302}?",
                                       "{513}",  "{600,}", "{700}+", "{1500,}?", "{1500,1501}", "{40}"};
constexpr const char* kTests[] = {"\\<", "\\>", "^", "$"};

// Draws patterns until ten differ: one fault shows in many of them, and the first few tell most.
void compareWithEnds(std::span<const char* const> quantifiers, std::uint64_t fallbackSeed, unsigned long rounds) {
    const std::uint64_t seed = environmentNumber("CORVANE_TEST_SEED", static_cast<unsigned long>(fallbackSeed));
    rounds = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? rounds / 12 : rounds);
    NullablePatterns source(seed, quantifiers, 1, kTests);
    size_t differing = 0;
    for (unsigned long round = 0; round < rounds && differing < 10; ++round) {
        const std::u16string pattern = widen(source.pattern());
        const RE_Flags flags = source.below(4) == 0 ? kPlain : kEmptyToo;
        const EngineConfig& config = allConfigs()[source.below(allConfigs().size())];
        const Engine engine(pattern, flags, config);
        for (int count = 0; count < 3; ++count) {
            const std::u16string subject = source.subject(5);
            const auto expected = reference::searchByEnds(pattern, flags, subject, 0);
            ASSERT_TRUE(expected) << printable(pattern);
            const Outcome got = engine.search(subject);
            differing += got == *expected ? 0U : 1U;
            EXPECT_EQ(describe(*expected), describe(got))
                << printable(pattern) << "  on '" << printable(subject) << "'  flags " << flags << "  (" << config
                << ")  CORVANE_TEST_SEED=" << seed;
        }
    }
}

TEST(EmptyPasses, OfFewPassesAgreeWithAListOfAllEnds) {
    compareWithEnds(kFewPasses, 260, 12000);
}

TEST(EmptyPasses, OfManyPassesAgreeWithAListOfAllEnds) {
    compareWithEnds(kManyPasses, 300, 4000);
}

TEST(EmptyPasses, AgreeWithAListOfAllEndsUnderAnEagerMemo) {
    const Delays delays(0, 0, 0);
    compareWithEnds(kFewPasses, 261, 6000);
    compareWithEnds(kManyPasses, 301, 2000);
}

}  // namespace
}  // namespace corvane_tests
