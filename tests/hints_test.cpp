// What is said about habits from other engines: where, and that the corrections mean here what is meant elsewhere.
#include "regexp/inspect/hints.h"

#include "regexp/regexp.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

std::u16string followed(std::u16string_view pattern) {
    return reFollowHints(pattern, hintsOfPattern(pattern));
}

TEST(Hints, CorrectWhatMeansSomethingElse) {
    const std::vector<std::pair<std::u16string, std::u16string>> rows{
        {u"\\bfoo\\b", u"\\<foo\\>"},
        {u"\\Aab\\z", u"(?-m:^)ab(?-m:$)"},
        {u"a\\Q.*\\Eb", u"a\\.\\*b"},
        {u"\\Q(", u"\\("},
        {u"[[:digit:]]+", u"\\d+"},
        {u"(?P<n>a)(?P=n)", u"(?<n>a)\\k<n>"},
        {u"\\hx", u"[ \\t]x"},
        // Nothing to say, or nothing to propose.
        {u"[\\b]", u"[\\b]"},
        {u"\\\\b(?<n>a)\\k<n>\\<\\d", u"\\\\b(?<n>a)\\k<n>\\<\\d"},
        {u"\\p{L}", u"\\p{L}"},
        {u"a\\", u"a\\"},
        {u"[\\", u"[\\"},
    };
    for (const auto& [written, meant] : rows) EXPECT_EQ(followed(written), meant);
}

TEST(Hints, HavePlacesInsideOfTheTextInOrder) {
    for (const std::u16string pattern :
         {u"\\b\\b[[:alpha:]x][[:alpha:]]\\p{", u"(?P=", u"(?P<", u"\\Q", u"[[:", u"\\", u"[^", u"\\p{L}\\K"}) {
        std::size_t end = 0;
        for (const RE_Hint& hint : hintsOfPattern(pattern)) {
            EXPECT_GE(hint.start, end);
            end = hint.start + hint.length;
            EXPECT_FALSE(hint.sentence.empty());
        }
        EXPECT_LE(end, pattern.size());
    }
}

TEST(Hints, WordEdgesAreThoseOfBothSides) {
    const std::u16string pattern = followed(u"\\b(?:\\d|-)+\\b");
    const RE_Tree tree(pattern, false);
    const std::u16string text = u"a-12-b 3";
    const std::unique_ptr<RE_Results> match(tree.match(text, 0));
    ASSERT_NE(match, nullptr);
    EXPECT_EQ(match->matchStart, 1u);
    EXPECT_EQ(match->matchLength, 4u);
}

TEST(Hints, AreAboutReplacementsToo) {
    EXPECT_EQ(reFollowHints(u"<\\1\\\\2$1>", hintsOfReplacement(u"<\\1\\\\2$1>")), u"<$1\\\\2$1>");
}

}  // namespace
