// Random builder expressions against the reference matcher, which is given the same expression written by hand: with
// every part in a group, and numbers counted along. CORVANE_TEST_SEED and CORVANE_TEST_ROUNDS as in random_test.cpp.
//
// The hard part of the builder is grouping and numbering: where an operand needs a group, and which number a token has
// when foreign text brings groups of its own, perhaps depending on flags and host. Each Made is both answers at once,
// and no code computes one from the other.
#include "tests/support/differential.h"
#include "tests/support/plain_host.h"
#include "tests/support/reference_matcher.h"
#include "regexp/options/compile_options.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace corvane_tests {
namespace {

using namespace RE_Builder_Space;

/// An expression twice: built, and as text for the reference.
struct Made {
    RE_Builder builder;
    std::u16string text;  // read without free spacing
};

/// Draws expressions and counts their groups as a reader would.
class ExpressionSource {
public:
    explicit ExpressionSource(std::uint64_t seed) : m_random(seed) {}

    Made expression(RE_Flags flags, bool evaluates) {
        m_groups = m_latest[0] = m_latest[1] = 0;
        m_named = m_dependent = false;
        m_flags = flags;
        m_evaluates = evaluates;
        return make(4);
    }
    std::u16string subject() {
        std::u16string text;
        for (size_t left = below(9); left > 0; --left) {
            text += u"aaabbAB1# \n"[below(11)];
        }
        return text;
    }
    size_t below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(m_random); }

private:
    Made make(int depth) { return depth == 0 || below(5) == 0 ? leaf() : composite(depth - 1); }

    Made leaf() {
        static const Made leaves[] = {{literal(u"a"), u"a"},
                                      {literal(u"ab"), u"(?:ab)"},
                                      {literal(u"1"), u"1"},
                                      {literal(u"ba1"), u"(?:ba1)"},
                                      {literal(u"#"), u"#"},
                                      {literal(u" \n"), u"(?: \n)"},
                                      {literal(u"B"), u"B"},
                                      {RE_Builder(), u"(?:)"},
                                      {any_unit(), u"(?s:.)"},
                                      {any_but_line_feed(), u"[^\n]"},
                                      {one_of(RE_Set(RE_SET_NOT_NULL)), u"(?s:.)"},
                                      {one_of(RE_Set(RE_SET_DIGIT) + RE_SetItem(u"#")), u"[\\d#]"},
                                      {none_of(RE_SetItem(u"a]^")), u"[^]a^]"},
                                      {one_of(RE_SetItem(u'a', u'b')), u"[ab]"},
                                      {one_of({}), u"(?!)"},
                                      {none_of({}), u"(?s:.)"},
                                      {subject_start(), u"(?-m:^)"},
                                      {subject_end(), u"(?-m:$)"},
                                      {line_start(), u"(?m:^)"},
                                      {line_end(), u"(?m:$)"},
                                      {word_start(), u"\\<"},
                                      {word_end(), u"\\>"},
                                      {RE_Builder(u"a|b"), u"(?:a|b)"},
                                      {RE_Builder(u"(?i)a|b"), u"(?i:a|b)"},
                                      {RE_Builder(u"^a|b$|."), u"(?:^a|b$|.)"}};
        const size_t way = below(std::size(leaves) + 9);
        if (way == std::size(leaves)) {
            m_groups += 2;
            return {RE_Builder(u"(b)|(1)"), u"(?:(b)|(1))"};
        }
        if (way == std::size(leaves) + 1) return foreignCondition();
        if (way == std::size(leaves) + 2) return foreignComment();
        if (way == std::size(leaves) + 3) return evaluation();
        return way < std::size(leaves) ? leaves[way] : reference();
    }
    // Texts whose groups depend on the host or on a flag: `m_dependent` from then on.
    Made foreignCondition() {
        m_dependent = true;
        m_groups += m_evaluates ? 2 : 0;
        return {RE_Builder(u"(?(?@f)(a)|(b))"), m_evaluates ? u"(?(?=)(a)|(b))" : u"(?:)"};
    }
    Made foreignComment() {
        m_dependent = true;
        const bool isComment = (m_flags & RE_FLAG_FREE_SPACING) != 0;
        m_groups += isComment ? 1 : 2;
        return {RE_Builder(u"(a) #(1)"), isComment ? u"(?:(a))" : u"(?:(a) #(1))"};
    }
    Made evaluation() {
        static const Made evaluations[] = {{evaluate(RE_Template(u"f(#")), u"(?:)"},
                                           {dynamic_expression(RE_Template(u"a|b")), u"(?:a|b)"},
                                           {dynamic_text(RE_Template(u"[ab]|1")), u"(?:[ab]|1)"}};
        const Made& made = evaluations[below(std::size(evaluations))];
        return m_evaluates ? made : Made{made.builder, u"(?:)"};
    }
    // By name, or by a handle, whose nearest group in front of the reference counts.
    Made reference() {
        if (m_named && below(3) == 0) {
            return {backreference(u"n"), u"\\k<n>"};
        }
        const size_t handle = below(2);
        const RE_Token& token = m_handles[handle];
        const std::u16string group = number(m_latest[handle]);
        // By number a token that took no part may be empty, by name absent: only one that has text is read then.
        if (m_dependent) {
            return {if_token(token, backreference(token)),
                    m_latest[handle] == 0 ? u"(?:)" : u"(?(" + group + u")\\" + group + u")"};
        }
        return {backreference(token), m_latest[handle] == 0 ? u"(?!)" : u"(?:\\" + group + u")"};
    }
    // The number is taken before the body is made, as its parenthesis comes first.
    Made capture(int depth) {
        const size_t way = below(4);
        ++m_groups;
        if (way < 2) {
            m_latest[way] = m_groups;
        }
        m_named = m_named || way == 2;
        const Made body = make(depth);
        return {way < 2    ? RE_Builder_Space::capture(m_handles[way], body.builder)
                : way == 2 ? RE_Builder_Space::capture(u"n", body.builder)
                           : RE_Builder_Space::capture(body.builder),
                (way == 2 ? u"(?<n>" : u"(") + body.text + u")"};
    }
    Made conditional(int depth) {
        const size_t handle = below(2), group = m_latest[handle];
        const bool byName = m_named && below(3) == 0;
        const Made yes = make(depth), no = make(depth);
        const std::u16string condition = byName ? u"n" : group == 0 ? u"?!" : number(group);
        return {byName ? if_token(u"n", yes.builder, no.builder) : if_token(m_handles[handle], yes.builder, no.builder),
                u"(?(" + condition + u")(?:" + yes.text + u")|(?:" + no.text + u"))"};
    }
    Made conditionOnLookaround(int depth) {
        static constexpr std::pair<RE_Builder (*)(const RE_Builder&, const RE_Builder&, const RE_Builder&),
                                   const char16_t*>
            kinds[] = {{if_pos_ahead, u"(?(?="},
                       {if_neg_ahead, u"(?(?!"},
                       {if_pos_behind, u"(?(?<="},
                       {if_neg_behind, u"(?(?<!"}};
        const auto& [function, opening] = kinds[below(std::size(kinds))];
        const Made body = make(depth), yes = make(depth), no = make(depth);
        return {function(body.builder, yes.builder, no.builder),
                opening + body.text + u")(?:" + yes.text + u")|(?:" + no.text + u"))"};
    }
    // Without evaluation the groups in it are not there, and a token whose nearest group is one of them has none.
    Made conditionOnExpression(int depth) {
        const size_t groups = m_groups, latest[] = {m_latest[0], m_latest[1]};
        const bool named = m_named, truth = below(2) == 0;
        m_dependent = true;
        const Made yes = make(depth), no = make(depth);
        if (!m_evaluates) {
            m_groups = groups;
            m_named = named;
            for (const size_t handle : {0, 1}) {
                m_latest[handle] = m_latest[handle] == latest[handle] ? latest[handle] : 0;
            }
        }
        return {if_expression(RE_Template(truth ? u"true" : u"false"), yes.builder, no.builder),
                m_evaluates ? (truth ? u"(?(?=)(?:" : u"(?(?!)(?:") + yes.text + u")|(?:" + no.text + u"))" : u"(?:)"};
    }
    // Whose groups are there or not, a token, and something that may refer to it.
    Made tokenBehindSomeGroups(int depth) {
        const size_t way = below(3);
        const Made groups = way == 0 ? foreignCondition() : way == 1 ? foreignComment() : conditionOnExpression(depth);
        const Made before{RE_Builder_Space::optional(groups.builder), u"(?:" + groups.text + u")?"};
        const Made token = capture(depth), last = below(2) == 0 ? reference() : conditional(depth);
        return joined(before, joined(token, last));
    }
    static Made joined(const Made& one, const Made& two) {
        return {one.builder + two.builder, u"(?:" + one.text + two.text + u")"};
    }
    // The bounds are given in the wrong order: `between` has to sort them.
    Made repeat(int depth) {
        const Made body = make(depth);
        const size_t sign = below(4), way = below(3), least = below(3), most = least + below(3);
        const std::u16string signs[] = {u"*", u"+", u"?", u"{" + number(least) + u"," + number(most) + u"}"};
        const RE_GREED greed = static_cast<RE_GREED>(way);
        const RE_Builder& b = body.builder;
        return {sign == 0   ? kleene(b, greed)
                : sign == 1 ? one_or_more(b, greed)
                : sign == 2 ? RE_Builder_Space::optional(b, greed)
                            : quantify(b, RE_Bounds::between(most, least), greed),
                u"(?:" + body.text + u")" + signs[sign] +
                    (way == 0   ? u""
                     : way == 1 ? u"?"
                                : u"+")};
    }
    Made composite(int depth) {
        const size_t way = below(24);
        if (way == 23) return tokenBehindSomeGroups(depth);
        if (way == 21) return conditionOnLookaround(depth);
        if (way == 22) return conditionOnExpression(depth);
        if (way < 4) return repeat(depth);
        if (way < 7) return capture(depth);
        if (way == 7) return conditional(depth);
        const Made one = make(depth);
        static constexpr std::pair<RE_Builder (*)(const RE_Builder&), const char16_t*> wrappers[] = {
            {pos_ahead, u"(?="},   {neg_ahead, u"(?!"}, {pos_behind, u"(?<="},
            {neg_behind, u"(?<!"}, {atomic, u"(?>"},    {group, u"(?:"}};
        if (way < 14) {
            const auto& [function, opening] = wrappers[way - 8];
            return {function(one.builder), opening + one.text + u")"};
        }
        if (way == 14) return {with_mode(RE_MODE_IGNORE_CASE, one.builder), u"(?i:" + one.text + u")"};
        if (way == 15) return {without_mode(RE_MODE_IGNORE_CASE, one.builder), u"(?-i:" + one.text + u")"};
        const Made two = make(depth);
        return way < 18 ? Made{either(one.builder, two.builder), u"(?:" + one.text + u"|" + two.text + u")"}
                        : joined(one, two);
    }
    static std::u16string number(size_t value) { return widen(std::to_string(value)); }
    std::mt19937_64 m_random;
    const RE_Token m_handles[2];
    // The number of the latest group of each handle; 0 without one.
    size_t m_latest[2] = {};
    size_t m_groups = 0;
    bool m_named = false;
    bool m_dependent = false;  // flags or host have decided about some group
    RE_Flags m_flags = 0;
    bool m_evaluates = false;
};

/// Tokens without a name may have got one from the builder.
Outcome withoutMadeNames(Outcome outcome) {
    for (Token& token : outcome.tokens) {
        token.name = token.name.starts_with(u"token_") ? u"" : token.name;
    }
    return outcome;
}

TEST(BuilderExpressions, MatchWhatTheyMeanAndCompileWithoutWarnings) {
    const std::uint64_t seed = environmentNumber("CORVANE_TEST_SEED", 412);
    const unsigned long rounds = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 1500 : 15000);
    ExpressionSource source(seed);
    size_t compared = 0, matched = 0;
    for (unsigned long round = 0; round < rounds; ++round) {
        const RE_Flags flags = static_cast<RE_Flags>(source.below(64));
        const bool allowed = source.below(2) == 0, evaluates = allowed && (flags & RE_FLAG_EVALUATE) != 0;
        const Made made = source.expression(flags, evaluates);
        const std::u16string text = made.builder.pattern();
        const EngineConfig& config = allConfigs()[source.below(allConfigs().size())];
        const Engine engine(text, flags, config);  // whose context forbids evaluation
        Corvane::regexp::CompileOptions options;
        PlainHost host(allowed, configured(options, config));
        const RE_Tree tree(text.data(), text.size(), flags, &host);
        ASSERT_TRUE(std::ranges::all_of(host.warnings(),
                                        [&](unsigned it) { return !evaluates && (it == 17 || it == 14 || it == 10); }))
            << printable(text) << " seed " << seed;
        for (int count = 0; count < 4; ++count) {
            const std::u16string subject = source.subject();
            if (const auto expected = reference::search(made.text, flags & ~RE_FLAG_FREE_SPACING, subject, 0)) {
                ++compared;
                matched += expected->matched ? 1 : 0;
                const std::unique_ptr<RE_Results> found(tree.match(subject.data(), subject.size(), 0));
                const Outcome outcome = evaluates ? toOutcome(found.get()) : engine.search(subject);
                ASSERT_EQ(describe(*expected), describe(withoutMadeNames(outcome)))
                    << printable(text) << " is not " << printable(made.text) << " under " << flags << " on "
                    << printable(subject) << " seed " << seed;
            }
        }
    }
    // Of the four subjects a round, the reference may give up on some, not on most.
    EXPECT_GT(compared, rounds * 3);
    EXPECT_GT(matched, rounds / 2);
}

}  // namespace
}  // namespace corvane_tests
