// Patterns put together by a program: what they are as text, that literals and sets are quoted right among all
// neighbours, and that misuse does not compile. builder_random_test.cpp compares what they match.
//
// The oracle is the expected text of a pattern, or the engine itself: a literal has to match exactly its text. What
// must not compile is a line of static_assert over a concept, since a test that compiles cannot show it otherwise.
#include "regexp/regexp.h"
#include "tests/support/engine_run.h"
#include "tests/support/plain_host.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <utility>

namespace corvane_tests {
namespace {

using namespace RE_Builder_Space;

// clang-format off
template <class... Arguments>
concept Sequence = requires(const Arguments&... arguments) { (arguments + ...); };
template <class... Arguments>
concept Chosen = requires(const Arguments&... arguments) { either(arguments...); };
template <class Argument>
concept Body = requires(const Argument& argument) { kleene(argument); capture(argument); pos_ahead(argument); };
template <class Argument>
concept Found = requires(const Argument& argument) { literal(argument); };

static_assert(Body<RE_Builder> && !Body<std::u16string> && !Body<const char16_t*> && !Body<RE_Set> &&
              !Body<RE_SetItem>);
static_assert(Found<std::u16string> && !Found<const char*> && !Found<std::nullptr_t> && !Found<RE_Builder>);
static_assert(Sequence<RE_Builder, RE_Builder> && !Sequence<RE_Builder, std::u16string> &&
              !Sequence<RE_Builder, RE_Set>);
static_assert(Sequence<RE_Set, RE_SetItem> && !Sequence<RE_SetItem, std::u16string> &&
              !Sequence<RE_SetItem, RE_SET_TYPE>);
static_assert(Chosen<RE_Builder, RE_Builder, RE_Builder> && !Chosen<RE_Builder> && !Chosen<RE_Set, RE_Set>);
static_assert(!std::is_constructible_v<RE_Set, int> && !std::is_constructible_v<RE_SetItem, char32_t, char32_t>);
static_assert(!std::is_constructible_v<RE_SetItem, const char*> && !std::is_convertible_v<std::u16string, RE_Builder>);
static_assert(!std::is_constructible_v<RE_SetItem, std::nullptr_t> &&
              !std::is_constructible_v<RE_Builder, std::nullptr_t>);
template <class Bound>
constexpr bool isBound = std::is_convertible_v<Bound, RE_Bounds> && std::is_constructible_v<RE_Bounds, Bound, Bound>;
static_assert(isBound<int> && isBound<size_t> && !isBound<bool> && !isBound<char> && !isBound<char16_t>);
static_assert(!isBound<double> && !isBound<RE_GREED> && !std::is_constructible_v<RE_Bounds, RE_GREED>);
static_assert(!std::is_constructible_v<RE_Tree, RE_Builder, RE_Flags> &&
              !std::is_constructible_v<RE_Tree, RE_Builder, RE_MODE>);
static_assert(std::is_constructible_v<RE_Tree, RE_Builder, bool> &&
              std::is_constructible_v<RE_Tree, RE_Builder, RE_Flags, RE_Context*>);
template <class Argument>
concept Evaluated = requires(const Argument& argument) { evaluate(argument); dynamic_text(argument); };
static_assert(Evaluated<RE_Template> && Evaluated<RE_Token> && !Evaluated<RE_Builder> && !Evaluated<std::u16string> &&
              !Evaluated<const char16_t*>);
static_assert(Sequence<RE_Template, RE_Token> && !Sequence<RE_Template, RE_Builder> && !Sequence<RE_Token, RE_Token>);
static_assert(RE_Token_Name::isValid(u"a1_") && !RE_Token_Name::isValid(u"1a") && !RE_Token_Name::isValid(u"") &&
              !RE_Token_Name::isValid(u"a\u00E9") && !RE_Token_Name::from(u"a-b"));
// clang-format on

// Two columns: the expression, and the text it has to be. A missing group would change the meaning, a needless one
// would make patterns unreadable.
TEST(Builder, GroupsWhereAnOperatorWouldTakeAPatternApart) {
    const RE_Token t, other;
    const RE_Builder a = literal(u"a"), ab = literal(u"ab"), a_b = either(a, literal(u"b")), raw(u"(?i)x|(y)");
    const RE_Builder nine = quantify(capture(RE_Builder()), {1, 9}), depends(u"(?(?@f)(a)|(b))"), comment(u"a#(b)");
    const RE_Template script =
        RE_Template(u"f(\")\", '$[#\\') ") + t + RE_Template(u"1") + RE_Template::named(u"n") + RE_Template::matched();
    RE_Builder twice = capture(t, a);
    twice += twice;
    const std::pair<RE_Builder, const char16_t*> table[] = {
        {raw + RE_Builder(), u"(?i)x|(y)"},
        {a + raw, u"a(?:(?i)x|(y))"},
        {either(raw, a_b, ab), u"(?:(?i)x|(y))|a|b|ab"},
        {either({}), u"(?!)"},
        {kleene(kleene(ab), RE_LAZY), u"(?:(?:ab)*)*?"},
        {one_or_more(a_b, RE_POSSESSIVE) + a_b, u"(?:a|b)++(?:a|b)"},
        {optional(literal(u"\U0001F600")), u"(?:\U0001F600)?"},
        {quantify(a, 3) + quantify(a, {2, 5}, RE_LAZY) + quantify(a, RE_Bounds::atLeast(2)), u"a{3}a{2,5}?a{2,}"},
        {quantify(a, RE_Bounds::between(4, 0)) + quantify(a, RE_Bounds::exactly(0)), u"a{0,4}a{0}"},
        {group(a_b) + atomic(a_b) + capture(a_b), u"(?:a|b)(?>a|b)(a|b)"},
        {pos_ahead(a_b) + neg_ahead(a) + pos_behind(a) + neg_behind(a), u"(?=a|b)(?!a)(?<=a)(?<!a)"},
        {with_mode(RE_MODE_IGNORE_CASE, without_mode(RE_MODE_DOT_ALL, raw)), u"(?i:(?-s:(?i)x|(y)))"},
        {one_of(RE_Set(RE_SET_SPACE) + RE_Set(RE_SET_NULL)) + one_of({}), u"[\\s\\0][^\\s\\S]"},
        {none_of(RE_Set(RE_SET_NULL) + RE_SetItem(u"7-")) + none_of({}), u"[^\\0\\x{37}\\-](?s:.)"},
        {capture(u"n", a) + backreference(u"n") + if_token(u"n", RE_Builder(), a_b), u"(?<n>a)\\k<n>(?(n)|(?:a|b))"},
        {capture(t, a) + kleene(backreference(t)) + if_token(t, a_b), u"(a)\\1*(?(1)(?:a|b))"},
        // References follow their groups, and keep clear of digits.
        {capture(a) + raw + capture(t, a) + backreference(t) + literal(u"1"), u"(a)(?:(?i)x|(y))(a)\\3(?:)1"},
        {twice + backreference(t) + capture(other, if_token(t, a, a_b)), u"(a)(a)\\2((?(2)a|(?:a|b)))"},
        {backreference(t) + if_token(other, a, a_b) + capture(t, a), u"(?!)(?(?!)a|(?:a|b))(a)"},
        // They are by name where their number is not the same under all flags and contexts.
        {depends + capture(t, a) + backreference(t), u"(?:(?(?@f)(a)|(b)))(?<token_1>a)\\k<token_1>"},
        {capture(t, a) + depends + backreference(t) + capture(other, a), u"(a)(?:(?(?@f)(a)|(b)))\\1(a)"},
        {comment + capture(t, a) + if_token(t, a), u"(?:a#(b)(?x)\n)(?<token_1>a)(?(token_1)a)"},
        {RE_Builder(u"a#b") + capture(t, a) + backreference(t), u"(?:a#b(?x)\n)(a)\\1"},
        {RE_Builder(u"(?<token_1>)") + depends + capture(t, a) + backreference(t),
         u"(?:(?<token_1>))(?:(?(?@f)(a)|(b)))(?<token__1>a)\\k<token__1>"},
        {if_expression(RE_Template(u"f"), capture(t, a), a_b) + capture(other, a) + backreference(t) +
             backreference(other),
         u"(?(?@f)(?<token_1>a)|(?:a|b))(?<token_2>a)\\k<token_1>\\k<token_2>"},
        // In expressions all is quoted that would end them or refer to tokens; a number there is of one digit.
        {capture(t, a) + evaluate(script), u"(?<token_1>a)(?@f\\(\"\\)\", '\\$\\[\\#\\\\'\\) $<token_1>1$<n>$&)"},
        {capture(t, a) + dynamic_text(RE_Template(u"@") + t + t), u"(a)(?\?\\@$1$1)"},
        {evaluate(t) + dynamic_expression(RE_Template::before() + RE_Template::after()), u"(?@$<token_0>)(?\?@$`$')"},
        {RE_Builder(u"()()()()()()()()()") + capture(t, a) + evaluate(t),
         u"(?:()()()()()()()()())(?<token_1>a)(?@$<token_1>)"},
    };
    for (const auto& [builder, pattern] : table) {
        EXPECT_EQ(printable(pattern), printable(builder.pattern()));
    }
    EXPECT_EQ(1u, twice.tokenIndex(t));
    EXPECT_EQ(std::nullopt, twice.tokenIndex(other));
    EXPECT_EQ(2u, (raw + nine + capture(t, a)).tokenIndex(t));
}

/// Foreign texts whose groups are there or not, depending on the flags and on what the host allows. Each may match the
/// empty text.
const char16_t* const foreignTexts[] = {u"",
                                        u"(a)?",
                                        u"a|(b)|",
                                        u"(?(?@f)(a)?|(b))",
                                        u"(?(?@false)(a)|(b)?)",
                                        u"(?-e)(?(?@f)(a)?|(b)?)()",
                                        u"(?e:(?(?@f)()|(b)))(?(?@f)()(?(?@f)()))",
                                        u"()|#(b)",
                                        u"(?x)()#(b)",
                                        u"(?x:#(b)\n)()",
                                        u"(?@f((a)))",
                                        u"(?\?(a)?)",
                                        u"(?\?@(a)?)()",
                                        u"[(#]|()",
                                        u"\\(?#|()",
                                        u"(?<n>)(?(?@f)(?<n>)|)",
                                        u"(?#())|()",
                                        u"(?(?=(a))a|(b)|)"};

// After such a text, and after groups that are not there without evaluation, everything that refers to a token finds
// it. A number where a name is needed would point at another group under one of the 128 flags and contexts.
TEST(BuilderTokens, AreFoundUnderAllFlagsAndContexts) {
    const RE_Token t, other;
    const RE_Builder digit = one_of(RE_SetItem(u'0', u'9')), sign = literal(u"!");
    for (const char16_t* const foreign : foreignTexts) {
        const RE_Builder raw{std::u16string(foreign)};
        const RE_Builder two =
            raw + capture(other, sign) + if_expression(RE_Template(u"f"), capture(digit) + raw) + raw;
        for (const RE_Builder& before : {raw, RE_Builder_Space::optional(raw), either(raw, sign), capture(raw),
                                         pos_behind(raw), two, with_mode(RE_MODE_FREE_SPACING, raw),
                                         without_mode(RE_MODE_EVALUATE, raw + with_mode(RE_MODE_EVALUATE, two))}) {
            const RE_Builder whole = before + capture(t, digit) + dynamic_text(t) + backreference(t) +
                                     if_token(t, backreference(t) + literal(u"0"), sign);
            for (RE_Flags way = 0; way < 128; ++way) {
                const RE_Flags flags = way / 2;
                PlainHost host(way % 2 != 0);
                const std::u16string subject = u"!7770!577770!57770";
                const std::string place = printable(whole.pattern()) + " flags and context " + std::to_string(way);
                const std::unique_ptr<RE_Results> match(RE_Tree(whole, flags, &host).match(subject, 0));
                ASSERT_TRUE(match != nullptr) << place;
                const std::optional<size_t> index = whole.tokenIndex(t, flags, &host);
                ASSERT_TRUE(index && *index < match->tokens->count) << place;
                const std::u16string found = subject.substr(match->tokens->get(*index)->start);
                const bool evaluated = way % 2 != 0 && (flags & RE_FLAG_EVALUATE) != 0;
                ASSERT_TRUE(found.starts_with(evaluated ? u"77770" : u"7770")) << place;
                ASSERT_EQ(found.substr(0, 1), reTokenText(*match, *index)) << place;
            }
        }
    }
}

// The same builder has the token at different indexes, depending on what decides about the groups in front of it.
TEST(BuilderTokens, HaveTheIndexThatTheArgumentsOfTheTreeGiveThem) {
    const RE_Token t;
    const RE_Builder depends(u"(?(?@f)(?<n>a)|(b))()(?<m>)#(?<x>)"), a = literal(u"a");
    const RE_Builder whole = depends + capture(t, a) + capture(u"n", a) + backreference(u"n");
    PlainHost allowing(true), forbidding(false);
    EXPECT_EQ(3u, whole.tokenIndex(t));
    EXPECT_EQ(4u, whole.tokenIndex(u"n"));
    EXPECT_EQ(1u, whole.tokenIndex(u"m"));
    EXPECT_EQ(2u, whole.tokenIndex(u"x"));
    EXPECT_EQ(std::nullopt, whole.tokenIndex(u"y"));
    EXPECT_EQ(5u, whole.tokenIndex(t, RE_DEFAULT_FLAGS, &allowing));
    EXPECT_EQ(0u, whole.tokenIndex(u"n", RE_DEFAULT_FLAGS, &allowing));
    EXPECT_EQ(4u, whole.tokenIndex(u"n", RE_DEFAULT_FLAGS, &forbidding));
    EXPECT_EQ(3u, whole.tokenIndex(u"n", RE_FLAG_FREE_SPACING, &allowing));
    EXPECT_EQ(2u, whole.tokenIndex(t, RE_FLAG_FREE_SPACING, nullptr));
    EXPECT_EQ(std::nullopt, whole.tokenIndex(u"x", RE_FLAG_FREE_SPACING, nullptr));
    // A group that is not there is no group of its token.
    const RE_Builder twice = capture(t, a) + if_expression(RE_Template(u"f"), capture(t, a));
    EXPECT_EQ(1u, twice.tokenIndex(t, RE_DEFAULT_FLAGS, &allowing));
    EXPECT_EQ(0u, twice.tokenIndex(t));
    EXPECT_TRUE(allowing.warnings().empty() && allowing.runs().empty());
}

// Whatever the text of a template holds, the host receives it unchanged and nothing in it counts as a reference.
TEST(BuilderTemplate, GivesTheHostItsTextAndTheTokens) {
    const RE_Token t, u;
    const std::u16string odd = u"f(\")\", '$[#\\') }{ $1 $& @\n\u00E9";
    const RE_Builder whole =
        subject_start() + capture(t, literal(u"a")) + capture(u"n", literal(u"b")) +
        evaluate(RE_Template(odd) + t + RE_Template(u"0 ") + RE_Template::named(u"n") + u + RE_Template::matched());
    for (const RE_Flags flags : {RE_Flags{0x10}, RE_Flags{0x18}}) {
        PlainHost host(true);
        EXPECT_TRUE(RE_Tree(whole, flags, &host).match_at(u"ab", 0) != nullptr);
        ASSERT_EQ(1u, host.runs().size());
        EXPECT_EQ(printable(odd + u"$<token_1>0 $<n>$<token_0>$&(ab$<token_0>ab)"), printable(host.runs()[0]));
        EXPECT_TRUE(host.warnings().empty());
    }
}

size_t below(std::mt19937_64& random, size_t limit) {
    return static_cast<size_t>(random() % limit);
}

// Half of the units are ASCII, so that everything with a meaning in patterns has many neighbours.
std::u16string randomText(std::mt19937_64& random, size_t longest) {
    std::u16string units(below(random, longest) + 1, u'\0');
    for (char16_t& unit : units) {
        unit = static_cast<char16_t>(below(random, random() % 2 == 0 ? 128 : 0x10000));
    }
    return units;
}

// The literal is between a reference and a digit, both of which a literal that is quoted badly would run into.
TEST(BuilderLiteral, IsExactlyItsTextUnderEveryFlag) {
    std::mt19937_64 random{86};
    for (int round = 0; round < 20000; ++round) {
        std::u16string text = randomText(random, 6);
        const RE_Flags flags = static_cast<RE_Flags>(below(random, 32)) & ~RE_FLAG_IGNORE_CASE;
        const RE_Token empty;
        const RE_Builder whole = capture(empty, subject_start()) + literal(text) + backreference(empty) + literal(u"0");
        const Engine engine((whole + subject_end()).pattern(), flags);
        ASSERT_TRUE(engine.warnings().empty()) << printable(text);
        ASSERT_EQ(text.size() + 1, engine.search(text + u"0").length) << printable(text) << " flags " << flags;
        // A pattern that matched too much would still match the text with one bit changed.
        text[below(random, text.size())] ^= 1;
        ASSERT_FALSE(engine.search(text + u"0").matched) << printable(text) << " flags " << flags;
    }
}

// Units, a range and a class together, each of which may be a sign of sets. All of ASCII is asked, and samples beyond.
TEST(BuilderSet, HoldsExactlyItsMembers) {
    std::mt19937_64 random{86};
    for (int round = 0; round < 3000; ++round) {
        const std::u16string units = randomText(random, 4), low = randomText(random, 1), high = randomText(random, 1);
        const RE_SetItem item = RE_SetItem(units) + RE_Set(RE_SET_NULL) + RE_SetItem(low[0], high[0]);
        const bool negated = round % 2 == 0;
        const Engine engine((negated ? none_of(item) : one_of(item)).pattern(), round % 3 == 0 ? 0x08 : 0x02);
        ASSERT_TRUE(engine.warnings().empty());
        for (size_t i = 0; i < 200; ++i) {
            const char16_t unit = i < 128 ? static_cast<char16_t>(i) : randomText(random, 1)[0];
            const bool ranged = unit >= std::min(low, high)[0] && unit <= std::max(low, high)[0];
            const bool member = unit == 0 || ranged || units.find(unit) != units.npos;
            ASSERT_EQ(member != negated, engine.search({&unit, 1}).matched)
                << printable(item.text()) << ' ' << int{unit};
        }
    }
}

// Four classes, then their negations, in the order of the type's values.
TEST(BuilderSet, OfEveryTypeIsItsClassAndTheNegationTheRest) {
    const std::u16string samples = u"7\u0665a_\u00E9 \n\u2003-";
    const std::u16string members[] = {u"7\u0665", u"7\u0665a_\u00E9", u" \n\u2003", std::u16string(1, u'\0')};
    for (int type = 0; type < 8; ++type) {
        const RE_Tree tree(one_of(RE_Set(static_cast<RE_SET_TYPE>(type))), false);
        for (const char16_t& unit : samples + members[3]) {
            const bool in = members[type % 4].find(unit) != std::u16string::npos;
            EXPECT_EQ(in != (type >= 4), tree.match_at({&unit, 1}, 0) != nullptr) << type << ' ' << int{unit};
        }
    }
}

}  // namespace
}  // namespace corvane_tests
