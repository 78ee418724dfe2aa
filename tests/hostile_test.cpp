// Patterns no author would write: they must compile to something, warn within the text, give the same answer under
// every setting, and end.
//
// What a broken pattern means is nobody's promise, so the oracle is the plain graph: optimised and plain must agree, in
// warnings too. Where the text happens to be well-formed, the reference judges as well.
#include "tests/support/differential.h"
#include "tests/support/pattern_random.h"
#include "tests/support/reference_matcher.h"
#include "tests/support/small_stack.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace corvane_tests {
namespace {

/// Few, as each is searched for every pattern; together they have what patterns of punctuation are about.
const std::vector<std::u16string>& fewSubjects() {
    static const std::vector<std::u16string> subjects = {u"", u"a", u"ab(a)", u"b\n[a]{1}*\\",
                                                         std::u16string(1, u'\0')};
    return subjects;
}

void expectWarningsInside(std::u16string_view pattern, const Engine& engine) {
    for (const Warning& warning : engine.warnings()) {
        EXPECT_LE(warning.number, 22U) << printable(pattern);
        EXPECT_LE(warning.position, pattern.size()) << printable(pattern);
    }
    EXPECT_LE(engine.warnings().size(), pattern.size()) << printable(pattern);
}

/// The plain graph and the optimised one agree, whatever the text means.
void expectHarmless(std::u16string_view pattern, RE_Flags flags) {
    const Engine engine(pattern, flags);
    const Engine plain(pattern, flags, {false, false, false, 0, false});
    expectWarningsInside(pattern, engine);
    EXPECT_EQ(engine.warnings(), plain.warnings()) << printable(pattern);
    for (const std::u16string& subject : fewSubjects()) {
        EXPECT_EQ(describe(plain.search(subject)), describe(engine.search(subject)))
            << printable(pattern) << " on " << printable(subject);
    }
}

/// Where the reference can read it too, and nothing is malformed, both read the same.
void expectAsRead(std::u16string_view pattern, RE_Flags flags) {
    const Engine engine(pattern, flags);
    if (!engine.warnings().empty()) {
        return;
    }
    for (const std::u16string& subject : fewSubjects()) {
        if (const auto expected = reference::search(pattern, flags, subject, 0, {20000})) {
            EXPECT_EQ(describe(*expected), describe(engine.search(subject)))
                << printable(pattern) << " on " << printable(subject);
        }
    }
}

// All of ASCII, alone and in pairs: every opening without its end is among them.
TEST(ShortPatterns, OfOneAndTwoUnitsAreHarmless) {
    for (char16_t first = 0; first < 128; ++first) {
        expectHarmless(std::u16string(1, first), kEmptyToo);
        for (unsigned second = 0; second < 128; second += sanitized() ? 3 : 1) {
            expectHarmless(std::u16string{first, static_cast<char16_t>(second)}, kPlain);
        }
    }
}

/// Deletes, replaces or inserts up to three times: nearly well-formed is where readers go wrong.
std::u16string mutated(std::u16string pattern, PatternSource& source) {
    constexpr std::u16string_view units = u"()[]{}?*+|\\^$.:<>=!-,19aikxo";
    for (size_t left = 1 + source.below(3); left > 0 && !pattern.empty(); --left) {
        const size_t place = source.below(pattern.size());
        const size_t way = source.below(3);
        pattern.replace(place,
                        way == 0   ? 1 + source.below(3)
                        : way == 1 ? 1
                                   : 0,
                        way == 0 ? 0 : 1, units[source.below(units.size())]);
    }
    return pattern;
}

template <typename MakeUnit>
std::u16string ofUnits(PatternSource& source, size_t most, const MakeUnit& unit) {
    std::u16string pattern(source.below(most), u'\0');
    std::ranges::generate(pattern, unit);
    return pattern;
}

// Random punctuation, well-formed patterns with a few units changed, random units, and every beginning of a pattern.
TEST(BrokenPatterns, AreHarmless) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 99));
    constexpr std::u16string_view units = u"(((()))[[]]{}<>||**+?\\\\^$.,12a:#=!@-x i?k";
    for (unsigned round = 0; round < (sanitized() ? 1000U : 10000U); ++round) {
        for (int count = 0; count < 4; ++count) {
            const auto punctuation = [&] { return units[source.below(units.size())]; };
            expectHarmless(ofUnits(source, 14, punctuation), count == 0 ? 0x3DU : kPlain);
        }
        const std::u16string broken = mutated(source.pattern(), source);
        expectHarmless(broken, kEmptyToo);
        expectAsRead(broken, kEmptyToo);
        if (round % 2 == 0) {
            const auto any = [&] { return static_cast<char16_t>(source.below(source.below(3) == 0 ? 128 : 0x10000)); };
            expectHarmless(ofUnits(source, 10, any), 0x33);
        }
        const std::u16string whole = round % 64 == 0 ? source.pattern() : u"";
        for (size_t length = 0; length < whole.size(); ++length) {
            expectHarmless(std::u16string_view(whole).substr(0, length), kPlain);
        }
    }
}

/// On a subject of so many a's the pattern finds this, whether loops are counted, copied or both.
struct Bound {
    const char* pattern;
    size_t units;  // a's in the subject
    const char* expected;
};

// Numbers around the limits of 16, 32 and 64 bits, products of bounds that exceed all of them, and huge bounds over
// what can be empty.
constexpr Bound kBounds[] = {
    {"a{99999999999}", 500, "null"},
    {"a{18446744073709551615}", 500, "null"},
    {"a{18446744073709551616,}", 500, "null"},
    {"a{0,99999999999999999999999999}", 500, "[0,500]"},
    {"a{0,65536}", 500, "[0,500]"},
    {"a{70000}", 70001, "[0,70000]"},
    {"(?:aa){40000}", 80001, "[0,80000]"},
    {"(?:a{1000}){1000}", 5000, "null"},
    {"(?:a{0,1000}){0,1000}", 5000, "[0,5000]"},
    {"(?:(?:(?:(?:a{100}){100}){100}){100}){100}", 500, "null"},
    {"(?:(?:(?:a{0,65536}){0,65536}){0,65536}){0,65536}", 500, "[0,500]"},
    {"(?:(?:a?){1000}){1000}", 3, "[0,3]"},
    {"(?:a{2}{2}{2}{2}{2}{2}{2}{2}{2}){2}", 1024, "[0,1024]"},
    {"(?:(?:(?:aa){2,}){300}){300}", 500, "null"},
    {"(?:){99999999999}a", 2, "[0,1]"},
    {"(?:(?=a)){65536}a", 2, "[0,1]"},
    {"(?:|a){1000}$", 700, "[0,700]"},
};

// Counted, copied up to the usual threshold, and copied without a threshold worth the name.
TEST(HugeBounds, AreNeitherUnrolledWithoutLimitNorMiscounted) {
    for (const Bound& bound : kBounds) {
        for (const size_t threshold : {size_t{0}, size_t{1024}, size_t{1000000000}}) {
            const Engine engine(widen(bound.pattern), kPlain, {true, true, true, threshold, false});
            EXPECT_EQ(bound.expected, describe(engine.search(std::u16string(bound.units, u'a'))))
                << bound.pattern << " with threshold " << threshold;
            // A threshold of a billion is a user's mistake that must not become a pattern of a billion nodes.
            EXPECT_GT(150000u, engine.tree().getNodeCount()) << bound.pattern << " with threshold " << threshold;
        }
    }
}

/// A pattern of `open` a hundred thousand times, `middle`, and `close` as often.
struct Nest {
    const char* open;
    const char* middle;
    const char* close;
    const char* expected;  // on "aab"; null when any answer will do
    bool mustCompile = false;
};

constexpr Nest kNests[] = {
    {"(?:", "ab", ")", "[1,2]", true},
    {"(?:", "a", ")?", "[0,1]"},
    {"(?:", "a", ")*", "[0,2]"},
    {"(?:b|", "a", ")", "[0,1]", true},
    {"(?i:", "A", ")", "[0,1]", true},
    {"(?:a|", "", "", nullptr},
    {"(", "", "", nullptr},
    {")", "", "", nullptr},
    {"[", "", "", nullptr},
    {"(?", "", "", nullptr},
    {"(?(1)", "a", ")", nullptr},
    {"(?=", "a", ")", nullptr},
    {"(?!", "a", ")", nullptr},
    {"(?<=", "a", ")", nullptr},
    {"(?>", "a", ")", nullptr},
    {"(?(?=a)", "a", ")", nullptr},
    {"(?(?=", "a", ")b)", nullptr},
    {"(?#", "", ")", nullptr},
    {"", "a", "*", nullptr},
    {"", "a", "{2}", nullptr},
    {"", "a", "+?", nullptr},
    {"", "a", "?+", nullptr},
    {"\\", "", "", nullptr},
    {"{", "", "}", nullptr},
    {"(?<n>", "", ")", nullptr},
    {"(?i)", "A", "", "[0,1]", true},
    {"(?x:{#\n", "", ")", nullptr},
    {"(?x){(?-x){", "", "", nullptr},
    {"\\x{(?x)", "", "", nullptr},
};

std::ostream& operator<<(std::ostream& out, const Nest& nest) {
    return out << nest.open << "..." << nest.middle << nest.close << "...";
}

bool dropsSomething(const Engine& engine) {
    const std::vector<Warning>& warnings = engine.warnings();
    return std::any_of(warnings.begin(), warnings.end(), [](const Warning& it) { return it.number == 22; });
}

class DeepNests : public testing::TestWithParam<Nest> {};

/// Loops and closed bodies may be refused at such a depth, with a warning; plain groups may not.
TEST_P(DeepNests, CompileSearchAndAreDestroyedOnASmallStack) {
    const Nest& nest = GetParam();
    const size_t depth = sanitized() ? 10000 : 100000;
    const std::u16string pattern =
        repeated(widen(nest.open), depth) + widen(nest.middle) + repeated(widen(nest.close), depth);
    std::string answer;
    runOnSmallStack([&] {
        const Engine engine(pattern);
        answer = dropsSomething(engine) ? "too deep" : describe(engine.search(u"aab"));
    });
    EXPECT_TRUE(nest.expected == nullptr || answer == nest.expected || answer == "too deep") << answer;
    EXPECT_TRUE(!nest.mustCompile || answer != "too deep");
}

INSTANTIATE_TEST_SUITE_P(Openings, DeepNests, testing::ValuesIn(kNests));

// Closing the outermost group takes all inner ones out of effect, a hundred thousand of them.
TEST(DeepCaptures, OfOneLetterReportTheOutermostTokenAlone) {
    const size_t depth = sanitized() ? 10000 : 100000;
    const std::u16string pattern = repeated(u"(", depth) + u"b" + repeated(u")", depth);
    std::string answer;
    runOnSmallStack([&] { answer = describe(Engine(pattern).search(u"aab")); });
    EXPECT_EQ("[2,1] t0=(2,1)", answer);
}

// The depth at which they are refused is above what any author or generator writes.
TEST(ClosedBodies, NestToADepthOfHundreds) {
    const size_t depth = 900;
    for (const char16_t* open : {u"(?=", u"(?>", u"(?<=", u"(?:"}) {
        const Engine engine(repeated(open, depth) + u"a" + repeated(u")", depth), kEmptyToo);
        EXPECT_TRUE(engine.search(u"ba").matched) << printable(open);
        EXPECT_TRUE(engine.warnings().empty()) << printable(open);
    }
}

// One literal, with and without case, and a million loops in a row.
TEST(LongPatterns, OfAMillionUnitsFindThemselves) {
    const size_t copies = sanitized() ? 20000 : 250000;
    runOnSmallStack([&] {
        const std::u16string text = repeated(u"abcd", copies);
        for (const RE_Flags flags : {kPlain, RE_Flags{0x13}}) {
            const Outcome outcome = Engine(text, flags).search(u"x" + text);
            EXPECT_EQ("[1," + std::to_string(text.size()) + "]", describe(outcome));
        }
        const std::u16string stars = repeated(u"a*", 4 * copies);
        EXPECT_EQ("[0,3]", describe(Engine(stars).search(u"aaab")));
    });
}

// Branches of each kind that alternations treat in a way of their own; the last one matches.
TEST(LongPatterns, OfAHundredThousandBranchesTryThemAll) {
    const size_t count = sanitized() ? 10000 : 100000;
    for (const char16_t* branch : {u"a|", u"ab|", u"a*b|", u"(a)|", u"\\d|"}) {
        runOnSmallStack([&] {
            const Engine engine(repeated(branch, count) + u"xy");
            EXPECT_EQ("[1,2]", describe({true, engine.search(u"zxy").start, engine.search(u"zxy").length, {}}))
                << printable(branch);
            EXPECT_EQ(u"z-", RE_Replace(u"-").replace(u"zxy", engine.tree(), false, 0));
        });
    }
}

std::string answerOnSmallStack(const char16_t* pattern, const std::u16string& subject) {
    std::string answer;
    runOnSmallStack([&] { answer = describe(Engine(pattern).search(subject)); });
    return answer;
}

// Ten million units on a stack of 128 KiB: a frame for each unit would need a thousand times as much.
TEST(LongSubjects, NeedNoStackOfTheirLength) {
    const size_t units = environmentNumber("CORVANE_TEST_UNITS", sanitized() ? 200000 : 10000000);
    const std::u16string subject = repeated(u"ab", units / 2) + u"c";
    const std::string whole = "[0," + std::to_string(units + 1) + "]";
    EXPECT_EQ(whole, answerOnSmallStack(u"(?:a*b)*c", subject));
    EXPECT_EQ("[0," + std::to_string(units) + "]", answerOnSmallStack(u"(?:a|b)*", subject));
    runOnSmallStack(
        [&] { EXPECT_EQ(subject, RE_Replace(u"$&").replace(subject, RE_Tree(u"(?:a*b)*c", false), false, 0)); });
    EXPECT_EQ(whole + " t0=(" + std::to_string(units - 1) + ",1)", answerOnSmallStack(u"(a|b|ab)*?c", subject));
}

}  // namespace
}  // namespace corvane_tests
