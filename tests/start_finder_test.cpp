// Which start finder a pattern gets, and that it skips no match.
//
// The oracle is the plain graph, which tries every position. Texts are drawn from the units of the pattern, so that
// what nearly matches is frequent: a finder that skips too far passes over the match right after a near miss.
#include "tests/support/engine_run.h"
#include "tests/support/text.h"

#include "regexp/regexp.h"

#include <gtest/gtest.h>

#include <random>

namespace corvane_tests {
namespace {

/// `finder` is the word for people, as `nameOf` has it.
struct FinderCase {
    const char16_t* pattern;
    RE_Flags flags;
    const char* finder;
};

const FinderCase kFinderCases[] = {
    {u"^ab", 0x12, "anchored"},
    {u"^\\w+", 0x14, "anchored"},
    {u"(ab)c?", 0x12, "literal"},
    {u"\\<ab", 0x13, "literal"},
    {u"(?<!\\w)ab(?!\\w)", 0x12, "literal"},
    {u"(?<=ab)\\w+", 0x12, "literal behind"},
    {u"(?<==)\\d+", 0x12, "literal behind"},
    {u"(?<=\\d)[a-z]+", 0x12, "literal behind"},
    {u"^[a-z].*xyz@", 0x14, "required literal"},
    {u".{2,4}(?:xyz|abc)", 0x10, "required literal"},
    {u"\\w+\\s+abcd", 0x12, "required literal"},
    {u"\\w*q\\w", 0x12, "required literal"},
    {u"(\\w+)=(\\w*)", 0x12, "required literal"},
    {u"(?:\\w|-)+?@(?:a|b)", 0x13, "required literal"},
    {u".*xyz", 0x10, "required literal"},
    {u"(?>a|\\w)+(?:x|y)?qz$", 0x12, "required literal"},
    {u"(?:a|bcd)\\w*qz", 0x12, "required literal"},
    {u"\\d{4}-\\d\\d", 0x12, "prefixes"},
    {u"ab|cd|ef|x\\d", 0x12, "prefixes"},
    {u"that|with|have|\u0448\u0435", 0x13, "prefixes"},
    {u"(?:[a-c]z)+|yz{2,}", 0x12, "prefixes"},
    {u"\\d[^\\x{0}-\\x{7F}]\\d", 0x12, "prefixes"},
    {u"\\w+", 0x12, "first units"},
    {u"[ab]+c?", 0x12, "first units"},
    {u"\\w+(?=,)", 0x12, "first units"},
    {u"ab.*?xyz", 0x10, "literal"},
    {u"ab\\w*=.*(?:q-|1\n)", 0x12, "literal"},
    {u"^.*b[^q]*1", 0x10, "anchored"},
    {u"(?(?=a)ab)c", 0x12, "first units"},
    {u"(?(?<!a)bc)d", 0x12, "first units"},
    {u"(?(?=a)ab|cd)xyz", 0x12, "prefixes"},
    {u"(?(?!a)|bc)xyz", 0x12, "required literal"},
    {u"(a)?(?(1)bc)xyz", 0x12, "required literal"},
    {u"\\w*(?(?=-)--q)=", 0x12, "required literal"},
    {u"[^x]", 0x12, "none"},
    {u"a*", 0x32, "none"},
};

// Texts of the units that the patterns are about, so that what nearly matches is frequent.
std::u16string textFor(std::mt19937& random, const std::u16string& units) {
    std::u16string text(random() % 90, u' ');
    for (char16_t& unit : text) {
        unit = random() % 4 == 0 ? units[random() % units.size()] : u"abcd xyz=@q-1\n\u0448\u0435"[random() % 16];
    }
    return text;
}

// Which finder, then 300 texts from random offsets against the plain graph. In every other round required literals are
// searched for from the first failure on.
TEST(StartFinders, AreChosenInOrderAndSkipNoMatch) {
    std::mt19937 random(7);
    for (const FinderCase& c : kFinderCases) {
        const Engine fast(c.pattern, c.flags);
        EXPECT_STREQ(c.finder, nameOf(fast.tree().getFacts().startFinder)) << printable(c.pattern);
        const Delays askingAtOnce(RE_Tuning().memoChoices, RE_Tuning().memoChoicesPerUnit, 0);
        const Engine eager(c.pattern, c.flags);
        const Engine plain(c.pattern, c.flags, {.linearSubpatterns = false, .dotStar = false});
        for (int round = 0; round < 300; ++round) {
            const std::u16string text = textFor(random, c.pattern);
            const size_t offset = random() % (text.size() + 1);
            const Engine& engine = round % 2 == 0 ? eager : fast;
            ASSERT_EQ(plain.search(text, offset), engine.search(text, offset))
                << printable(c.pattern) << printable(text);
        }
    }
}

// Four hundred words of frequent letters: the kind that other finders would stop at too often.
TEST(StartFinders, SearchForManyLiteralsByWindows) {
    std::mt19937 random(11);
    for (const RE_Flags flags : {RE_Flags{0x12}, RE_Flags{0x13}}) {
        std::u16string pattern;
        for (int word = 0; word < 400; ++word) {
            pattern += word == 0 ? u"" : u"|";
            for (size_t length = 2 + random() % 6; length > 0; --length) {
                pattern += u"etaoinshrdku"[random() % 12];
            }
        }
        const Engine fast(pattern, flags);
        EXPECT_STREQ("windows", nameOf(fast.tree().getFacts().startFinder));
        const Engine plain(pattern, flags, {.linearSubpatterns = false, .dotStar = false});
        for (int round = 0; round < 200; ++round) {
            std::u16string text(random() % 20, u' ');
            for (char16_t& unit : text) {
                unit = u"etaoinshrdkuETAOINSHRDKU.,-\u212A"[random() % 28];
            }
            ASSERT_EQ(plain.search(text), fast.search(text)) << printable(pattern) << printable(text);
        }
    }
}

// A run of units that may precede a literal is tried from each of its positions; the literal is found once.
TEST(StartFinders, SearchForARequiredLiteralOnce) {
    const RE_Tree tree(u"\\w+?=\\d", false);
    const std::u16string text = std::u16string(20'000, u'a') + u"=b";
    RE_Search_Report report;
    EXPECT_EQ(nullptr, tree.match(text.data(), text.size(), 0, {}, report));
    EXPECT_GT(1'000'000u, report.steps);
}

}  // namespace
}  // namespace corvane_tests
