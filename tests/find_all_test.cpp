// All matches of a text, the text between them, and matches at one place.
//
// The oracle is a written list of matches and parts, and for sequences a search of the same subject by itself: what a
// sequence keeps from match to match and from subject to subject must show in no answer.
#include "host/allocation_counter.h"
#include "tests/support/differential.h"
#include "tests/support/pattern_random.h"
#include "tests/support/scripted_host.h"
#include "regexp/base/search_limits.h"

#include <gtest/gtest.h>
#include <iterator>
#include <ranges>

namespace corvane_tests {
namespace {

// A range refers to the tree and the text. It must not be made of temporaries, which would be gone.
static_assert(std::ranges::input_range<RE_Match_Range>);
template <class Tree, class Text>
concept Searchable = requires(Tree&& tree, Text&& text) {
    std::forward<Tree>(tree).find_all(std::forward<Text>(text));
};
static_assert(Searchable<RE_Tree&, std::u16string&> && Searchable<const RE_Tree&, const char16_t (&)[2]>);
static_assert(!Searchable<RE_Tree, std::u16string&> && !Searchable<RE_Tree&, std::u16string>);
static_assert(!std::is_constructible_v<RE_Match_Range, const RE_Tree&, std::u16string_view, size_t>);

/// Each match as its start and, in angle brackets, its text.
std::u16string marked(const RE_Tree& tree, std::u16string_view text, size_t offset = 0) {
    std::u16string result;
    for (auto& match : tree.find_all(text, offset)) {
        result += widen(std::to_string(match.matchStart)) + u"<" + std::u16string(reMatchText(match)) + u">";
    }
    return result;
}

std::u16string joined(const RE_Tree& tree, std::u16string_view text) {
    std::u16string result;
    for (const std::u16string_view part : tree.split(text)) {
        result.append(part).append(u"/");
    }
    return result;
}

// Pattern, flags, text, its matches, and the parts between them. Empty matches are where walks go wrong: at the ends,
// one after the other, directly after a match.
TEST(FindAll, WalksThroughEveryMatchOnceAsSplitDoes) {
    const struct {
        const char16_t* pattern;
        RE_Flags flags;
        const char16_t *text, *matches, *parts;
    } table[] = {
        {u"a+", kPlain, u"aabab", u"0<aa>3<a>", u"/b/b/"},
        {u"a+", kPlain, u"b", u"", u"b/"},
        {u"a*", kPlain, u"", u"", u"/"},
        {u"a*", kEmptyToo, u"", u"0<>", u"/"},
        {u"a*", kEmptyToo, u"baa", u"0<>1<aa>", u"b//"},
        {u"x*", kEmptyToo, u"axb", u"0<>1<x>3<>", u"a/b/"},
        {u"", kEmptyToo, u"abc", u"0<>1<>2<>3<>", u"a/b/c/"},
        {u"(?=b)|c", kEmptyToo, u"abcb", u"1<>2<c>", u"a/b/b/"},  // before the last b nothing new ends
        {u"(?<=(.))\\1", kPlain, u"aabbb", u"1<a>3<b>4<b>", u"a/b///"},
        {u"^|;", kEmptyToo, u";a;", u"0<>2<;>", u";a//"},
    };
    for (const auto& row : table) {
        const Engine engine(row.pattern, row.flags);
        EXPECT_EQ(printable(row.matches), printable(marked(engine.tree(), row.text))) << printable(row.pattern);
        EXPECT_EQ(printable(row.parts), printable(joined(engine.tree(), row.text))) << printable(row.pattern);
    }
    const RE_Tree tree(u"a", false);
    EXPECT_EQ(u"3<a>", marked(tree, u"aaba", 2));
    EXPECT_EQ(u"", marked(tree, u"a", 2) + marked(tree, {}));
    EXPECT_EQ(u"/", joined(tree, {}));
}

// Texts are views of the subject. A token without text and one that is not in effect differ by their data.
TEST(FindAll, GivesTextsOfTokensThatOutliveTheMatch) {
    const RE_Tree tree(u"(\\w*)=(?<value>\\w*)", false);
    std::vector<std::u16string_view> texts;
    auto range = tree.find_all(u"k1=v, key=, =x");
    for (auto& match : range) {
        texts.insert(texts.end(), {reTokenText(match, 0), reTokenText(match, 1), reTokenText(match, u"value")});
        EXPECT_EQ(nullptr, reTokenText(match, 2).data());
        EXPECT_EQ(nullptr, reTokenText(match, u"values").data());
    }
    EXPECT_TRUE(range.begin() == range.end() && !range.interrupted());
    EXPECT_EQ((std::vector<std::u16string_view>{u"k1", u"v", u"v", u"key", u"", u"", u"", u"x", u"x"}), texts);
    EXPECT_NE(nullptr, texts[4].data());  // empty, but in effect
    const std::unique_ptr<RE_Results> narrow(tree.match("a=b"));
    EXPECT_EQ(nullptr, reMatchText(*narrow).data());
    EXPECT_EQ(nullptr, reTokenText(*narrow, 0).data());
}

// Two matches take as many allocations as two thousand: what the walk needs it takes once.
TEST(FindAll, AllocatesNothingForAFurtherMatch) {
    const RE_Tree tree(u"(?<n>a|ab)(?=c)", false);
    const auto allocations = [&](size_t repeats) {
        const std::u16string text = expand("{{abc-*" + std::to_string(repeats) + "}}");
        utAllocationCounter counter;
        EXPECT_EQ(repeats, static_cast<size_t>(std::ranges::distance(tree.find_all(text))));
        return counter.requests();
    };
    EXPECT_EQ(allocations(2), allocations(2000));
}

// Against a search of each subject alone: what memo, seeks and tokens kept of the subject before would show here.
TEST(MatchSequence, TakesAnotherSubjectLikeANewSequence) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 77));
    for (unsigned long round = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 200 : 2000); round > 0; --round) {
        const Engine engine(source.pattern(), kEmptyToo, allConfigs()[source.below(allConfigs().size())]);
        const RE_Search_Limits limits{.steps = 20000};
        RE_Match_Sequence sequence(engine.tree(), {}, &limits);
        for (int count = 0; count < 4; ++count) {
            // The answers to far seeks are remembered.
            const std::u16string subject = source.below(8) == 0 ? source.runs(4, 3000) : source.subject(9);
            sequence.use(subject);
            const auto alone = engine.searchWithin(subject, 0, limits);
            const Outcome found = toOutcome(sequence.find(0));
            if (!alone || !sequence.report().isComplete()) {
                break;
            }
            ASSERT_EQ(*alone, found) << engine.tree().graph() << " on " << printable(subject);
        }
    }
}

// Stretches without a start are known by their place in memory, which the next subject may take.
TEST(MatchSequence, ForgetsTheBarrenStretchesOfASubject) {
    const RE_Tree tree(u"^[ab]*bc", false);
    std::u16string subject(100, u'a');
    RE_Match_Sequence sequence(tree, subject);
    EXPECT_EQ(nullptr, sequence.find(0));
    subject.replace(98, 2, u"bc");
    sequence.use(subject);
    EXPECT_NE(nullptr, sequence.find(0));
}

// A released match takes the tokens along, and the next search needs new ones.
TEST(MatchSequence, ReleasesTheMatchOfItsLastSearchAndContinues) {
    const RE_Tree tree(u"(a)\\1", false);
    RE_Match_Sequence sequence(tree, u"aa x");
    ASSERT_NE(nullptr, sequence.find(0));
    EXPECT_EQ(nullptr, sequence.find(2));
    EXPECT_EQ(nullptr, sequence.releaseMatch());
    for (int round = 0; round < 2; ++round) {
        sequence.use(u"yaa");
        EXPECT_EQ("[1,2] t0=(1,1)", describe(toOutcome(sequence.find(0))));
        const std::unique_ptr<RE_Results> match(sequence.releaseMatch());
        EXPECT_EQ("[1,2] t0=(1,1)", describe(toOutcome(match.get())));
        EXPECT_EQ(nullptr, sequence.releaseMatch());
    }
}

// A search that a host's exception ends in the midst of choices, tokens and bodies leaves nothing to the next subject.
TEST(MatchSequence, ContinuesAfterAnException) {
    HostJournal host;
    const ScriptedRun run(u"(?:(a)|b)+?(?=(?:(a)|b)*(?@f $1))c", host);
    RE_Match_Sequence sequence(run.tree(), {});
    for (long throwAt = 0; throwAt < 20; ++throwAt) {
        host.throwAt = throwAt;
        sequence.use(u"abaabab");
        EXPECT_THROW(sequence.find(0), HostFailure);
        sequence.use(u"bac");
        EXPECT_EQ("[0,3] t0=(1,1)", describe(toOutcome(sequence.find(0))));
    }
}

// Look-behinds read what is in front of the position, although no match begins there.
TEST(MatchAt, TriesOnePositionAndSeesTheTextBefore) {
    const RE_Tree tree(u"(?<=a)b|c*d", false);
    const std::u16string text = u"abcd";
    EXPECT_EQ(nullptr, tree.match_at(text, 0));
    EXPECT_EQ(u"b", reMatchText(*tree.match_at(text, 1)));
    EXPECT_EQ(u"cd", reMatchText(*tree.match_at(text, 2)));
    EXPECT_EQ(nullptr, tree.match_at(text, 4));
    EXPECT_EQ(nullptr, tree.match_at(text, 5));
    EXPECT_EQ(nullptr, RE_Tree(u"x*", false).match_at(text, 0));
    EXPECT_NE(nullptr, Engine(u"x*", kEmptyToo).tree().match_at({}, 0));
    utAllocationCounter counter;
    counter.failAt(1);
    EXPECT_THROW(tree.match_at(text, 1), std::bad_alloc);
    counter.failAt(0);
}

}  // namespace
}  // namespace corvane_tests
