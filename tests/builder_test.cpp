// Patterns put together by a program: what they are as text, that literals and sets are quoted right among all
// neighbours, and that misuse does not compile. builder_random_test.cpp compares what they match.
#include "host/ctype.h"
#include "regexp/regexp.h"
#include "tests/support/engine_run.h"

#include <gtest/gtest.h>
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
static_assert(RE_Token_Name::isValid(u"a1_") && !RE_Token_Name::isValid(u"1a") && !RE_Token_Name::isValid(u"") &&
              !RE_Token_Name::isValid(u"a\u00E9") && !RE_Token_Name::from(u"a-b"));

TEST(Builder, GroupsWhereAnOperatorWouldTakeAPatternApart) {
    const RE_Token t, other;
    const RE_Builder a = literal(u"a"), ab = literal(u"ab"), a_b = either(a, literal(u"b")), raw(u"(?i)x|(y)");
    const RE_Builder nine = quantify(capture(RE_Builder()), {1, 9});
    RE_Builder twice = capture(t, a);
    twice += twice;
    const std::pair<RE_Builder, const char16_t*> table[] = {
        {RE_Builder(), u""},
        {raw, u"(?i)x|(y)"},
        {raw + RE_Builder(), u"(?i)x|(y)"},
        {a + raw, u"a(?:(?i)x|(y))"},
        {either(raw, a_b, ab), u"(?:(?i)x|(y))|a|b|ab"},
        {either({}), u"(?!)"},
        {kleene(a), u"a*"},
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
        {if_token(u"n", a_b), u"(?(n)(?:a|b))"},
        {capture(u"n", a) + backreference(u"n") + if_token(u"n", RE_Builder(), a_b), u"(?<n>a)\\k<n>(?(n)|(?:a|b))"},
        // References follow their groups, and keep clear of digits.
        {capture(t, a) + kleene(backreference(t)), u"(a)\\1*"},
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

// Half of the units are ASCII, so that everything with a meaning in patterns has many neighbours.
class UnitSource {
public:
    std::u16string text(size_t longest) {
        std::u16string units;
        for (size_t left = below(longest) + 1; left > 0; --left) {
            units += static_cast<char16_t>(below(2) == 0 ? below(128) : below(0x10000));
        }
        return units;
    }
    size_t below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(m_random); }

private:
    std::mt19937_64 m_random{86};
};

TEST(BuilderLiteral, IsExactlyItsTextUnderEveryFlag) {
    UnitSource source;
    for (int round = 0; round < 20000; ++round) {
        std::u16string text = source.text(6);
        const RE_Flags flags = static_cast<RE_Flags>(source.below(32)) & ~RE_FLAG_IGNORE_CASE;
        const RE_Token token;
        const RE_Builder around = capture(token, subject_start());
        const Engine engine((around + literal(text) + backreference(token) + literal(u"0") + subject_end()).pattern(), flags);
        ASSERT_TRUE(engine.warnings().empty()) << printable(text);
        ASSERT_EQ(text.size() + 1, engine.search(text + u"0").length) << printable(text) << " flags " << flags;
        text[source.below(text.size())] ^= 1;
        ASSERT_FALSE(engine.search(text + u"0").matched) << printable(text) << " flags " << flags;
    }
}

TEST(BuilderSet, HoldsExactlyItsMembers) {
    UnitSource source;
    for (int round = 0; round < 3000; ++round) {
        const std::u16string units = source.text(4);
        const std::u16string ends = source.text(1) + source.text(1);
        const bool negated = source.below(2) == 0;
        RE_SetItem item = RE_SetItem(units) + RE_SetItem(ends[0], ends[1]);
        item = source.below(2) == 0 ? RE_Set(RE_SET_NULL) + item : item + RE_Set(RE_SET_NULL);
        const Engine engine((negated ? none_of(item) : one_of(item)).pattern(), source.below(2) == 0 ? 0x08 : 0x02);
        ASSERT_TRUE(engine.warnings().empty());
        for (size_t i = 0; i < 200; ++i) {
            const char16_t unit = i < 128 ? static_cast<char16_t>(i) : source.text(1)[0];
            const bool member = unit == 0 || units.find(unit) != units.npos ||
                                (unit >= std::min(ends[0], ends[1]) && unit <= std::max(ends[0], ends[1]));
            ASSERT_EQ(member != negated, engine.search({&unit, 1}).matched) << printable(item.text()) << ' ' << int{unit};
        }
    }
}

TEST(BuilderSet, OfEveryTypeIsItsClassAndTheNegationTheRest) {
    using Predicate = bool (*)(char16_t);
    const Predicate classes[] = {cvu_isdigit, [](char16_t unit) { return cvu_isalnum(unit) || unit == u'_'; },
                                 cvu_isspace, [](char16_t unit) { return unit == 0; }};
    for (int type = 0; type < 8; ++type) {
        const RE_Tree tree(one_of(RE_Set(static_cast<RE_SET_TYPE>(type))), false);
        for (unsigned value = 0; value < 0x10000; ++value) {
            const char16_t unit = static_cast<char16_t>(value);
            const bool in = tree.match_at({&unit, 1}, 0) != nullptr;
            ASSERT_EQ(classes[type % 4](unit) != (type >= 4), in) << type << ' ' << value;
        }
    }
}

}  // namespace
}  // namespace corvane_tests
