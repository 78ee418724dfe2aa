// RE_FLAG_LINES_APART: a search of many lines finds in each what a search of that line alone finds.
#include "regexp/base/flags.h"
#include "regexp/regexp.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr RE_Flags kFlags = RE_FLAG_LINES_APART | RE_FLAG_ALLOW_EMPTY | RE_FLAG_KEEP_TOKENS;

/// The matches as places in the whole text.
std::vector<std::pair<std::size_t, std::size_t>> matchesIn(const RE_Tree& tree, std::u16string_view text,
                                                           std::size_t base = 0) {
    std::vector<std::pair<std::size_t, std::size_t>> found;
    for (const RE_Results& match : tree.find_all(text)) found.emplace_back(base + match.matchStart, match.matchLength);
    return found;
}

std::vector<std::pair<std::size_t, std::size_t>> matchesByLine(const RE_Tree& tree, const std::u16string& text) {
    std::vector<std::pair<std::size_t, std::size_t>> found;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(u'\n', at), text.size());
        const auto ofLine = matchesIn(tree, std::u16string_view(text).substr(at, end - at), at);
        found.insert(found.end(), ofLine.begin(), ofLine.end());
        at = end + 1;
    }
    return found;
}

void expectSame(const std::u16string& pattern, RE_Flags modes, const std::u16string& text) {
    SCOPED_TRACE(testing::PrintToString(pattern) + " in " + testing::PrintToString(text));
    const RE_Tree tree(pattern.data(), pattern.size(), kFlags | modes, nullptr);
    EXPECT_EQ(matchesIn(tree, text), matchesByLine(tree, text));
}

TEST(LinesApart, NothingReachesOverALineFeed) {
    const std::u16string text = u"ab\na b\n\nB\n\"a\nb\" c\nab";
    for (const char16_t* pattern : {u".",
                                    u"(?s).+",
                                    u"a.b",
                                    u"\\s",
                                    u"\\W+",
                                    u"\\D*",
                                    u"[^a]+",
                                    u"[\\s\\w]+",
                                    u"a\nb",
                                    u"\\n",
                                    u"[\\n]",
                                    u"[\\t-\\r]",
                                    u"(?i)[^b]*B",
                                    u"(?i)\nb",
                                    u"^",
                                    u"$",
                                    u"^$",
                                    u"(?-m)^a",
                                    u"(?-m)b$",
                                    u"b$(?=.)",
                                    u"(?<=\\n)b",
                                    u"(?<!\\n)b",
                                    u"a(?=\\s)",
                                    u"a(?!\\s)",
                                    u"\\<\\w+\\>",
                                    u"(?>\\s*)b",
                                    u"(.)\\1|(?<=(\\s))b",
                                    u"(?(?=[^x])b|c)",
                                    u"(?:\\x{A}|b)+",
                                    u"\\012|b",
                                    u"(?<=[^x]+)b"})
        for (const RE_Flags modes : {0U, RE_FLAG_DOT_ALL, RE_FLAG_IGNORE_CASE}) expectSame(pattern, modes, text);
}

TEST(LinesApart, RandomPatterns) {
    static const std::u16string atoms[] = {u"a",     u"b",      u".",      u"\\s",     u"\\W",    u"[^a]",
                                           u"\\n",   u"^",      u"$",      u"\\<",     u"\\>",    u"(?=a)",
                                           u"(?!b)", u"(?<=b)", u"(?<!a)", u"(a|\\s)", u"(?s:.)", u"(?>b|\\D)"};
    static const std::u16string quantifiers[] = {u"", u"", u"*", u"+", u"??", u"{2}", u"*?", u"++"};
    static const char16_t units[] = {u'a', u'b', u'\n', u' ', u'\n'};
    std::mt19937 random(7);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    for (int run = 0; run != 2000 && !testing::Test::HasFailure(); ++run) {
        std::u16string pattern;
        for (std::size_t items = 1 + below(4); items != 0; --items) {
            pattern += atoms[below(std::size(atoms))] + quantifiers[below(std::size(quantifiers))];
            if (below(6) == 0) pattern += u'|';
        }
        std::u16string text;
        for (std::size_t length = below(12); length != 0; --length) text += units[below(std::size(units))];
        expectSame(pattern, below(2) == 0 ? RE_FLAG_IGNORE_CASE : 0, text);
    }
}

}  // namespace
