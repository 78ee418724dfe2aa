// Texts that are made while a search runs: they match as if they were written in the pattern.
//
// The oracle is that pattern, with the text spliced in as a group, or an expected result where a text depends on the
// search. Texts that include themselves have no such pattern; they pin where the engine gives up.
#include "tests/support/differential.h"
#include "tests/support/pattern_random.h"
#include "tests/support/scripted_host.h"
#include "tests/support/small_stack.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace corvane_tests {
namespace {

using Inputs = HostJournal::Inputs;
using Text = std::optional<std::u16string>;

HostJournal::Answer always(const std::u16string& text) {
    return [text](const Inputs&) { return Text(text); };
}

TEST(DynamicText, MatchesAsIfItWereWrittenInThePattern) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 631));
    constexpr unsigned around = kDynamics | kModes;  // modes that are set would reach beyond the text
    constexpr unsigned inside = kDynamics | kCaptures | kReferences | kConditions;
    const unsigned long rounds = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 100 : 1500);
    for (unsigned long round = 0; round < rounds; ++round) {
        const std::u16string text = source.pattern(inside);
        const std::u16string front = source.pattern(around);
        const std::u16string back = source.pattern(around);
        const std::u16string shapes[] = {
            front + u"@" + back,           u"(?:" + front + u"@)*" + back, u"(?:@|" + front + u"){0,3}?" + back,
            u"(?>" + front + u"@)" + back, u"(?!@" + back + u")" + front,  front + u"(?<=@)" + back,
            u"((?:@){2})+\\1?" + back};
        const std::u16string shape = shapes[source.below(std::size(shapes))];
        const auto with = [&](const std::u16string& stand) {
            std::u16string pattern = shape;
            return pattern.replace(pattern.find(u'@'), 1, stand);
        };
        const RE_Flags flags = source.below(2) == 0 ? kPlain : kEmptyToo;
        const EngineConfig& config = allConfigs()[source.below(allConfigs().size())];
        HostJournal host;
        host.throwAt = 3000;  // a text that is tried too often takes too long
        host.answers[u"t"] = always(text);
        const Engine spliced(with(u"(?:" + text + u")"), flags, config);
        ScriptedRun dynamic(with(u"(??@t)"), host, flags, config);
        for (int count = 0; count < 3; ++count) {
            const std::u16string subject = source.subject(8);
            const std::string found = dynamic.search(subject);
            if (found.starts_with("thrown")) {
                break;
            }
            ASSERT_EQ(describe(spliced.search(subject)), found.substr(0, found.find(" |")))
                << printable(with(u"(?:" + text + u")")) << " on " << printable(subject) << ' ' << config;
        }
    }
}

// A language that no single pattern of the dialect describes, so the oracle is the definition.
TEST(DynamicText, FindsPalindromesByIncludingItself) {
    HostJournal host;
    host.answers[u"p"] = always(u"(?:a(??@p)a|b(??@p)b|[ab]?)");
    const ScriptedRun run(u"^(??@p)$", host, kEmptyToo);
    forEachSubject(u"ab", sanitized() ? 6 : 9, [&](const std::u16string& subject) {
        const bool expected = std::equal(subject.begin(), subject.end(), subject.rbegin());
        EXPECT_EQ(expected, run.outcome(subject).matched) << printable(subject);
    });
}

// Groups in a text only group; references and conditions in it are about the pattern around it. A name for such a group
// is a warning.
TEST(DynamicText, ReadsTokensOfThePatternAroundItAndMakesNone) {
    HostJournal host;
    host.answers[u"t"] = always(u"(\\1|\\k<n>)(?<m>!)?(?(2)-|=)");
    const ScriptedRun run(u"(a|b)(?<n>c)(??@t)", host);
    EXPECT_EQ("[1,4] t0=(1,1) t1=(2,1)n", describe(run.outcome(u"xbcb-")));
    EXPECT_EQ("[0,5] t0=(0,1) t1=(1,1)n", describe(run.outcome(u"acc!-")));
    EXPECT_EQ("null", describe(run.outcome(u"acb-")));
    EXPECT_EQ(3, std::count(host.calls.begin(), host.calls.end(), "warning 12 at <")) << host.text();
}

// 200 texts within each other are matched, 201 are a failure, and 5000 need no more stack.
TEST(DynamicText, NestsUpToALimit) {
    for (const int depth : {1, 200, 201, 5000}) {
        HostJournal host;
        int left = depth;
        host.answers[u"p"] = [&](const Inputs&) { return Text(--left > 0 ? u"(??@p)" : u"x"); };
        EXPECT_EQ(depth <= 200, ScriptedRun(u"(??@p)", host).outcome(u"x").matched) << depth;
    }
}

// Everything but the first fails at the limit at every level; some of them in exponentially many ways.
TEST(DynamicText, ThatIncludesItselfWithoutEndEndsInAFailedMatch) {
    for (const char16_t* text : {u"(??@p)", u"(??@p)x|(??@p)y|(??@p)", u"(?!(??@p)(??@p))(??@p)",
                                 u"(?:(??@p)|(??@p))*z", u"(?>(??@p)?(??@p))", u"(?<=(??@p)|(??@p))x"}) {
        HostJournal host;
        host.throwAt = 200'000;
        host.answers[u"p"] = always(text);
        EXPECT_EQ("null", describe(ScriptedRun(u"(??@p)", host).outcome(u"xyz"))) << printable(text);
    }
    HostJournal host;
    host.answers[u"sum"] = always(u"(?:(??@sum)\\+[0-9]|[0-9])");
    EXPECT_EQ("[0,5]", describe(ScriptedRun(u"(??@sum)$", host).outcome(u"1+2+3"))) << "left recursion";
}

// What never matches is given up at last, and what is beside it is tried as after any failure. A text that was given up
// and left tokens, records or an open body would change the extents below.
TEST(DynamicText, ThatIsGivenUpIsAFailedNode) {
    const struct {
        const char16_t* text;
        const char16_t* pattern;
        const char16_t* subject;
        const char* found;
    } cases[] = {{u"(??@q)|(??@q)", u"x(??@q)|a", u"xa", "[1,1]"},
                 {u"(??@q)|(??@q)", u"(x)(?:(??@q)|(a))", u"xa", "[0,2] t0=(0,1) t1=(1,1)"},
                 {u"(??@q)?(??@q)?", u"(??@q)(??@q)(??@q)z|a", u"a", "[0,1]"},
                 {u"(?:(??@q)|(??@q)){2}", u"(?:x(?:(??@q))?){2}a", u"xxxa", "[1,3]"},
                 {u"(?!(??@q)(??@q))x*(??@q)", u"x(?!(??@q))(?>x?(??@q)|x)a", u"xxa", "[0,3]"},
                 {u"(?=(?<!(??@q)a)(??@q))|(?>(??@q)|x)b", u"(.)(?<=\\1(?:(??@q))?)a", u"xa", "[0,2] t0=(0,1)"}};
    for (const auto& row : cases) {
        for (const EngineConfig& config : {EngineConfig{}, allConfigs()[0]}) {
            HostJournal host;
            host.answers[u"q"] = always(row.text);
            EXPECT_EQ(row.found, describe(ScriptedRun(row.pattern, host, kPlain, config).outcome(row.subject)))
                << printable(row.pattern);
        }
    }
}

// The limit of refusals is counted for each outermost text anew: 18 passes reach it, and the loop still succeeds.
TEST(DynamicText, MayReachTheLimitOftenInALoop) {
    HostJournal host;
    std::u16string text = u"(?:";
    for (int i = 0; i < 60; ++i) {
        text += u"(??@p)|";
    }
    host.answers[u"p"] = always(text + u"a)");
    EXPECT_EQ("[0,18]", describe(ScriptedRun(u"(?:(??@p))*", host).outcome(std::u16string(18, u'a'))));
}

// Texts side by side are not nested: neither stack nor limit grows with their number.
TEST(DynamicText, FollowsItselfWithoutLimitOnASmallStack) {
    const std::u16string subject(sanitized() ? 2'000 : 30'000, u'a');
    runOnSmallStack([&] {
        for (const char16_t* text : {u"a", u"a|ab", u"(?:a{1,2}){1}", u"(?>a)"}) {
            HostJournal host;
            host.answers[u"t"] = always(text);
            EXPECT_EQ(subject.size(), ScriptedRun(u"^(?:(??@t))*$", host).outcome(subject).length);
        }
    });
}

}  // namespace
}  // namespace corvane_tests
