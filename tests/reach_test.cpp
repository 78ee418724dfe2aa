// How far attempts look. The oracle is the search of the whole subject: whatever is called final when only a part of the
// subject is known must be what the whole gives, whatever comes after that part.
#include "regexp/analysis/reach.h"
#include "regexp/match_sequence.h"
#include "tests/support/differential.h"
#include "tests/support/subject_random.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>

namespace corvane_tests {
namespace {

constexpr size_t kNoBound = static_cast<size_t>(RE_Reach::unbounded);

RE_Reach reachOf(std::u16string_view pattern, RE_Flags flags = kPlain, const EngineConfig& config = {}) {
    return RE_Reach(Engine(pattern, flags, config).tree().getFacts());
}

/// Nothing where the search takes too long.
std::optional<Outcome> firstMatch(const RE_Tree& tree, std::u16string_view text, size_t offset, size_t latest) {
    const RE_Search_Limits limits{.steps = 20'000};
    RE_Match_Sequence sequence(tree, text, &limits);
    const Outcome outcome = toOutcome(sequence.find(offset, latest));
    return sequence.report().isComplete() ? std::optional(outcome) : std::nullopt;
}

TEST(Reach, OfPatternsThatCanBeCounted) {
    struct {
        std::u16string_view pattern;
        size_t units;
        std::u16string_view barriers, others;
    } const cases[] = {
        {u"abc", 3, u"d\n", u"abc"},
        {u"a|bcd", 3, u"", u"abcd"},
        {u"", 0, u"a", u""},
        {u"a{2,5}b", 6, u"c", u"ab"},
        {u"a+b", kNoBound, u"c\n", u"ab"},
        {u"\\w+", kNoBound, u" .\n", u"ab_9"},
        {u".*x", kNoBound, u"", u"x\n"},
        {u"a.c", 3, u"", u"a\n"},
        {u"a(?=bc)", 3, u"d", u"bc"},
        {u"(?<=ab)c", 2, u"d", u"abc"},
        {u"ab$", 3, u"c", u"ab"},
        {u"(?m)ab$", 3, u"c\n", u"ab"},
        {u"^ab", 2, u"\n", u"ab"},
        {u"(?i)k", 1, u"b", u"kK\u212A"},
        {u"(a|b)\\1", kNoBound, u"c", u"abA"},
        {u"(?:ab|c){0,9}", 36, u"d", u"abc"},
        {u"(?>a{1,3})b", 4, u"c", u"ab"},
        {u"(?:a{1,3}b)*", kNoBound, u"c", u"ab"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(printable(row.pattern));
        const RE_Reach reach = reachOf(row.pattern, kEmptyToo);
        if (row.units == kNoBound) {
            EXPECT_EQ(RE_Reach::unbounded, reach.units());
        } else {
            EXPECT_LE(reach.units(), row.units) << "more than it needs";
        }
        for (const char16_t unit : row.barriers) {
            EXPECT_TRUE(reach.isBarrier(unit)) << static_cast<unsigned>(unit);
        }
        for (const char16_t unit : row.others) {
            EXPECT_FALSE(reach.isBarrier(unit)) << static_cast<unsigned>(unit);
        }
    }
    EXPECT_TRUE(reachOf(u".*x").needsAll());
    EXPECT_FALSE(reachOf(u"(?-s).*x").needsAll());
    EXPECT_TRUE(reachOf(u"(?i)(k)\\1").isBarrier(u'b'));
    EXPECT_FALSE(reachOf(u"((?-i)k)(?i)\\1").isBarrier(0x212A)) << "a reference that ignores case";
}

// A pattern of many loops, each in the next: work that grows with the square of it would take minutes.
TEST(Reach, OfLargePatternsIsFound) {
    std::u16string pattern;
    for (int i = 0; i < 20'000; ++i) {
        pattern += u"(?:ab|c)*d{2,3}";
    }
    EXPECT_TRUE(reachOf(pattern).isBarrier(u'x'));
}

TEST(Reach, CallsFinalOnlyWhatTheRestCannotChange) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 77));
    size_t answers = 0, matches = 0, byBarrier = 0;
    for (unsigned long round = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 400 : 4000); round > 0; --round) {
        const DrawnPattern drawn = round % 3 == 0 ? source.drawDense() : source.draw(kDynamics);
        const Engine engine(drawn.text, drawn.flags, allConfigs()[source.below(allConfigs().size())]);
        const RE_Tree& tree = engine.tree();
        const RE_Reach reach(tree.getFacts());
        for (int texts = 0; texts < 6; ++texts) {
            const std::u16string text =
                source.oneIn(3) ? source.runs(5, 9) : source.subject(12) + u"\n" + source.subject(8);
            const std::u16string_view known(text.data(), source.below(text.size() + 1));
            const size_t starts = reach.finalStarts(known);
            const size_t offset = source.below(known.size() + 1);
            if (starts <= offset) {
                continue;
            }
            ASSERT_LE(starts, known.size() + 1);
            const auto whole = firstMatch(tree, text, offset, starts - 1);
            const auto part = firstMatch(tree, known, offset, starts - 1);
            if (whole && part) {
                ASSERT_EQ(*whole, *part) << printable(drawn.text) << " flags " << drawn.flags << " on "
                                         << printable(text) << " of which " << known.size() << " units are known, from "
                                         << offset << " to " << starts - 1;
                ++answers;
                matches += whole->matched;
                byBarrier += reach.units() == RE_Reach::unbounded;
            }
        }
    }
    EXPECT_GT(answers, 500u);
    EXPECT_GT(matches, 100u);
    EXPECT_GT(byBarrier, 50u);
}

TEST(Reach, TellsWhichPatternsSeeLineFeeds) {
    for (const char16_t* blind :
         {u"a", u"[a-z]+", u"(?-s).*", u"(?m)^a$", u"\\ba|b\\b", u"(?<=a)b", u"(?!a)b", u"(a)\\1"}) {
        EXPECT_FALSE(reachOf(blind).tellsFromLimit(u'\n')) << printable(blind);
    }
    for (const char16_t* sees : {u"(?s).", u"a\\s", u"^a", u"a$", u"[^a]", u"(?<=\\W)a", u"a(?!\\s)", u"(?<![^b])a"}) {
        EXPECT_TRUE(reachOf(sees).tellsFromLimit(u'\n')) << printable(sees);
    }
}

/// All matches as those of one line after the other, with positions of the whole.
std::vector<Outcome> matchesByLine(const RE_Tree& tree, const std::u16string& text) {
    std::vector<Outcome> all;
    for (size_t from = 0; from <= text.size();) {
        const size_t end = std::min(text.find(u'\n', from), text.size());
        for (const RE_Results& match : tree.find_all(std::u16string_view(text).substr(from, end - from))) {
            Outcome outcome = toOutcome(&match);
            outcome.start += from;
            for (Token& token : outcome.tokens) {
                token.start += token.tookPart ? from : 0;
            }
            all.push_back(outcome);
        }
        from = end + 1;
    }
    return all;
}

TEST(Reach, LinesMayBeSearchedTogetherWhereItSaysSo) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 78));
    size_t blind = 0, matches = 0;
    for (unsigned long round = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 400 : 4000); round > 0; --round) {
        const DrawnPattern drawn = round % 3 == 0 ? source.drawDense() : source.draw(kDynamics);
        const Engine engine(drawn.text, drawn.flags & ~RE_Flags{RE_FLAG_DOT_ALL},
                            allConfigs()[source.below(allConfigs().size())]);
        if (RE_Reach(engine.tree().getFacts()).tellsFromLimit(u'\n')) {
            continue;
        }
        const std::u16string text = source.subject(8) + u"\n" + source.subject(8) + u"\n\n" + source.subject(8);
        std::vector<Outcome> together;
        for (const RE_Results& match : engine.tree().find_all(text)) {
            together.push_back(toOutcome(&match));
        }
        std::vector<Outcome> apart = matchesByLine(engine.tree(), text);
        for (std::vector<Outcome>* outcomes : {&together, &apart}) {
            for (Outcome& outcome : *outcomes) {
                std::erase_if(outcome.tokens, [](const Token& token) { return !token.tookPart; });
            }
        }
        ASSERT_EQ(apart, together) << printable(drawn.text) << " flags " << drawn.flags << " on " << printable(text);
        ++blind;
        matches += apart.size();
    }
    EXPECT_GT(blind, 100u);
    EXPECT_GT(matches, 200u);
}

}  // namespace
}  // namespace corvane_tests
