// Patterns put together by a program: what they are as text, that literals and sets are quoted right among all
// neighbours, and that misuse does not compile. builder_random_test.cpp compares what they match.
#include "regexp/regexp.h"
#include "tests/support/engine_run.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <utility>

namespace corvane_tests {
namespace {

using namespace RE_Builder_Space;

template <class... Arguments>
concept Sequence = requires(const Arguments&... arguments) { (arguments + ...); };
template <class... Arguments>
concept Chosen = requires(const Arguments&... arguments) { either(arguments...); };
template <class Argument>
concept Body = requires(const Argument& argument) { kleene(argument); capture(argument); pos_ahead(argument); };
template <class Argument>
concept Found = requires(const Argument& argument) { literal(argument); };

static_assert(Body<RE_Builder> && !Body<std::u16string> && !Body<const char16_t*> && !Body<RE_Set> && !Body<RE_SetItem>);
static_assert(Found<std::u16string> && !Found<const char*> && !Found<std::nullptr_t> && !Found<RE_Builder>);
static_assert(Sequence<RE_Builder, RE_Builder> && !Sequence<RE_Builder, std::u16string> && !Sequence<RE_Builder, RE_Set>);
static_assert(Sequence<RE_Set, RE_SetItem> && !Sequence<RE_SetItem, std::u16string> && !Sequence<RE_SetItem, RE_SET_TYPE>);
static_assert(Chosen<RE_Builder, RE_Builder, RE_Builder> && !Chosen<RE_Builder> && !Chosen<RE_Set, RE_Set>);
static_assert(!std::is_constructible_v<RE_Set, int> && !std::is_constructible_v<RE_SetItem, char32_t, char32_t>);
static_assert(!std::is_constructible_v<RE_SetItem, const char*> && !std::is_convertible_v<std::u16string, RE_Builder>);
static_assert(!std::is_constructible_v<RE_SetItem, std::nullptr_t> && !std::is_constructible_v<RE_Builder, std::nullptr_t>);
template <class Bound>
constexpr bool isBound = std::is_convertible_v<Bound, RE_Bounds> && std::is_constructible_v<RE_Bounds, Bound, Bound>;
static_assert(isBound<int> && isBound<size_t> && !isBound<bool> && !isBound<char> && !isBound<char16_t>);
static_assert(!isBound<double> && !isBound<RE_GREED> && !std::is_constructible_v<RE_Bounds, RE_GREED>);
static_assert(!std::is_constructible_v<RE_Tree, RE_Builder, RE_Flags> && !std::is_constructible_v<RE_Tree, RE_Builder, RE_MODE>);
static_assert(std::is_constructible_v<RE_Tree, RE_Builder, bool> && std::is_constructible_v<RE_Tree, RE_Builder, RE_Flags, RE_Context*>);
static_assert(RE_Token_Name::isValid(u"a1_") && !RE_Token_Name::isValid(u"1a") && !RE_Token_Name::isValid(u"") &&
              !RE_Token_Name::isValid(u"a\u00E9") && !RE_Token_Name::from(u"a-b"));

TEST(Builder, GroupsWhereAnOperatorWouldTakeAPatternApart) {
    const RE_Token t, other;
    const RE_Builder a = literal(u"a"), ab = literal(u"ab"), a_b = either(a, literal(u"b")), raw(u"(?i)x|(y)");
    const RE_Builder nine = quantify(capture(RE_Builder()), {1, 9});
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
    };
    for (const auto& [builder, pattern] : table) {
        EXPECT_EQ(printable(pattern), printable(builder.pattern()));
    }
    EXPECT_EQ(1u, twice.tokenIndex(t));
    EXPECT_EQ(std::nullopt, twice.tokenIndex(other));
    EXPECT_EQ(2u, (raw + nine + capture(t, a)).tokenIndex(t));
}

size_t below(std::mt19937_64& random, size_t limit) { return random() % limit; }

// Half of the units are ASCII, so that everything with a meaning in patterns has many neighbours.
std::u16string randomText(std::mt19937_64& random, size_t longest) {
    std::u16string units(below(random, longest) + 1, u'\0');
    for (char16_t& unit : units) {
        unit = static_cast<char16_t>(below(random, random() % 2 == 0 ? 128 : 0x10000));
    }
    return units;
}

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
        text[below(random, text.size())] ^= 1;
        ASSERT_FALSE(engine.search(text + u"0").matched) << printable(text) << " flags " << flags;
    }
}

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
            ASSERT_EQ(member != negated, engine.search({&unit, 1}).matched) << printable(item.text()) << ' ' << int{unit};
        }
    }
}

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
