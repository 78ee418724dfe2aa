// One run of a pattern at one position, in a search state of the caller's: fresh, used before, or of a search that is
// in progress.
//
// The oracle is match_at, which is the same run with a state of its own. What another use leaves in a state (tokens,
// counts, a memo of a graph that no longer exists) must change no answer, nor may the run change what the caller's
// search knows.
#include "host/interrupt.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/parser/parser_context.h"
#include "regexp/regexp.h"
#include "tests/support/engine_run.h"
#include "tests/support/scripted_host.h"
#include "tests/support/text.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace corvane_tests {
namespace {

using Match = std::unique_ptr<RE_Results>;

/// A match with all tokens in effect.
std::string shown(const RE_Results* match) {
    if (match == nullptr) {
        return "null";
    }
    std::string text = "[" + std::to_string(match->matchStart) + "," + std::to_string(match->matchLength) + "]";
    for (std::size_t index = 0; const RE_TokenInfo* token = match->tokens->get(index); ++index) {
        text += " (" + std::to_string(token->start) + "," + std::to_string(token->length) + ")";
    }
    return text;
}

/// Runs the tree once in the given state, and checks what has to hold of the state afterwards.
std::string runAt(const RE_Tree& tree, std::size_t position, RE_Search_Info& info) {
    std::size_t length = 99;
    const char16_t* const p = info.subjectBegin + position;
    if (!tree.match_bool(p, &length, &info)) {
        EXPECT_EQ(0u, length);
        return "null";
    }
    EXPECT_EQ(-1, info.backtrack.top);
    EXPECT_EQ(p, info.matchStart);
    const RE_Results view(&info, p, length, false);
    return shown(&view);
}

const char16_t* const kAskedPatterns[] = {
    u"a(b+)c",    u"(a)|(b)",        u"(a)?(?(1)b|c)",      u"(?:(a)|b)*\\1", u"((a)b)+",      u"b*",
    u"(?<=(a))b", u"(?:a|ab|(b))*c", u"(?:(x)|a)(?:\\1|b)", u"(?>(a|b)*)c",   u"(a)(??b)\\1?", u"(?=(a|b))(??$1)."};

// A search that begins there and nowhere else is the same thing with a state of its own.
TEST(MatchBool, AnswersAsASearchAtThatPositionWhateverTheStateWasUsedFor) {
    const std::u16string text = u"xabcabbcaab";
    const std::function<void(RE_Search_Info&)> uses[] = {
        [](RE_Search_Info&) {}, [](RE_Search_Info& info) { info.resetForStart(info.subjectBegin + 5); },
        [&](RE_Search_Info& info) { runAt(RE_Tree(u"(.)(.)(.)", false), 2, info); },
        [&](RE_Search_Info& info) { runAt(RE_Tree(u"(?:(a)|(b)|(c)){3}$", false), 1, info); },
        [&](RE_Search_Info& info) {  // a memo of a graph that is gone
            const std::u16string pattern = u"(?:(?:a|aa|b|c)*e|)(?:x|a|b|c|(?:a|b)*)*d";
            runAt(RE_Tree(pattern, false), 0, info);
            info.resetForStart(info.subjectBegin);
        }};
    for (const char16_t* pattern : kAskedPatterns) {
        HostJournal host;
        const ScriptedRun run(pattern, host, kEmptyToo);
        std::size_t matches = 0;
        for (const auto& use : uses) {
            RE_Search_Info info(text.data(), text.size(), 4, nullptr, false);
            for (std::size_t position = 0; position <= text.size(); ++position) {
                use(info);
                const std::string expected = shown(run.tree().match_at(text, position).get());
                EXPECT_EQ(expected, runAt(run.tree(), position, info)) << printable(pattern) << " at " << position;
                matches += expected != "null" ? 1 : 0;
            }
        }
        EXPECT_GT(matches, 0u) << printable(pattern);
    }
}

// Either ends a run in the middle, with choices, bodies and counts open. The next run has to begin without them.
TEST(MatchBool, ContinuesAfterAnInterruptAndAfterAnException) {
    const std::u16string text = std::u16string(5000, u'a') + u"b";
    const RE_Tree tree(u"(?:a|aa)*c|(a)", false);
    RE_Search_Info info(text.data(), text.size(), 1, nullptr, true);
    utInterruptState::SetInterruptPending(true);
    EXPECT_EQ("null", runAt(tree, 0, info));
    EXPECT_EQ(RE_Search_Outcome::interrupted, info.stopReason());
    utInterruptState::SetInterruptPending(false);
    EXPECT_EQ("[3,1] (3,1)", runAt(tree, 3, info));

    HostJournal host;
    host.answers[u"f"] = [](const HostJournal::Inputs&) -> std::optional<std::u16string> { throw HostFailure(); };
    const ScriptedRun throwing(u"(a)(?>(?:a|(a)){3}(?@f)b)", host);
    std::size_t length = 0;
    host.throwAt = static_cast<long>(host.calls.size());
    EXPECT_THROW(throwing.tree().match_bool(text.data(), &length, &info), HostFailure);
    EXPECT_EQ("[3,1] (3,1)", runAt(tree, 3, info));
}

// The subject is a part of the text, so a position that is off by one would still read valid memory.
TEST(MatchBool, RefusesPositionsOutsideOfTheSubject) {
    const std::u16string text = u"aaa";
    const RE_Tree tree(u"a?", false);
    RE_Search_Info info(text.data() + 1, 1, 0, nullptr, false);
    std::size_t length = 9;
    EXPECT_FALSE(tree.match_bool(text.data(), &length, &info));
    EXPECT_FALSE(tree.match_bool(text.data() + 3, &length, &info));
    EXPECT_TRUE(tree.match_bool(text.data() + 2, &length, &info));
    EXPECT_EQ(0u, length);
}

// Tokens that the caller set stay, and a run that fails takes its own back; a window's end is the end of the match.
TEST(MatchBool, IsAPartOfTheAttemptThatTheCallerHasOpened) {
    const std::u16string text = u"xabc";
    const char16_t* const begin = text.data();
    const RE_Tree tree(u"b(?=(c))", false);
    RE_Search_Info info(begin, text.size(), 2, nullptr, false);
    info.resetForStart(begin + 1);
    info.startToken(1, nullptr, begin);
    info.endToken(1, begin + 1, false);
    std::size_t length = 0;
    {
        RE_Search_Scope scope(info);
        EXPECT_TRUE(tree.match_bool(begin + 2, &length, &info));
        EXPECT_FALSE(tree.match_bool(begin + 1, &length, &info));
        scope.leave();
    }
    EXPECT_EQ(begin + 1, info.matchStart);
    EXPECT_EQ(3u, info.getToken(0)->start);
    info.resetForStart(begin);
    EXPECT_FALSE(RE_Tree(u"x(a)(b)d", false).match_bool(begin, &length, &info));
    EXPECT_EQ(nullptr, info.getToken(0)) << "of a run that failed";
    info.resetForStart(begin + 1);
    RE_Window_Scope window(info, begin + 2, begin + 3);
    EXPECT_TRUE(tree.match_bool(begin + 2, &length, &info));
    EXPECT_TRUE(info.atRequiredEnd(begin + 2 + length));
    window.leave();
    EXPECT_EQ(begin + 1, info.matchStart);
}

// Ends the pattern that continues in it where another one matches.
class Runs_Another : public RE_Node {
public:
    Runs_Another(RE_ParserContext& parser, const RE_Tree& pattern) : RE_Node(parser), another(pattern) {}
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override {
        std::size_t length = 0;
        const bool matched = another.match_bool(subject + pos, &length, &info);
        pos += length;
        return matched;
    }
    bool isEnd() const override { return endsPattern; }

    bool endsPattern = true;

private:
    const RE_Tree& another;
};

// The oracle is the other pattern as an atomic group of the first: what the search knows of its own graph it has to
// know afterwards.
TEST(MatchBool, LeavesTheSearchThatItRunsInAsItWas) {
    const char16_t* const fronts[] = {u"(a)",         u"((?:a|aa|b)*)",     u"(?:(a)|b){1,3}?", u"(?:(a)|(b))*",
                                      u"(?:(a?)|b)*", u"((?:(?:a|aa)*b)*)", u"x?(?>(a)|b)"};
    const char16_t* const others[] = {u"b",       u"(?:a|ab)*c",  u"(?:a?b?)*?c",
                                      u"(?<=b)c", u"(?:a|b){2}c", u"(?:b|(x)(y)(z))*c"};
    const std::u16string long_text = std::u16string(300, u'a') + u"bc";
    RE_Context host;
    for (const char16_t* front : fronts) {
        for (const char16_t* other : others) {
            const RE_Tree another(other, false);
            RE_ParserContext parser(&host, nullptr, kPlain);
            auto* const node = parser.make<Runs_Another>(another);
            const RE_Tree tree(front, std::u16string_view(front).size(), kPlain, &host, node, nullptr, true);
            const RE_Tree spliced(front + (u"(?>" + std::u16string(other)) + u")", false);
            for (const std::u16string& text : {std::u16string(u"xaabcabbbc"), std::u16string(u"bbaaab"), long_text}) {
                for (const std::size_t offset : {0u, 2u}) {
                    EXPECT_EQ(shown(Match(spliced.match(text, offset)).get()),
                              shown(Match(tree.match(text, offset)).get()))
                        << printable(front) << " with " << printable(other) << " on " << printable(text);
                }
            }
        }
    }
}

// A group that opened before a run with groups of its own keeps its start, and a run that fails leaves all tokens.
TEST(MatchBool, LeavesTheGroupsAroundItAsTheyAre) {
    RE_Context host;
    RE_ParserContext parser(&host, nullptr, kPlain);
    for (const char16_t* other : {u"(b)(c)", u"(b)(c)d|bc"}) {
        const RE_Tree another(other, false);
        auto* const end = parser.make<RE_End_Of_Tree>();
        auto* const close = parser.make<RE_End_Token>(1u, u"");
        auto* const runs = parser.make<Runs_Another>(another);
        auto* const open = parser.make<RE_Start_Token>(1u, u"");
        open->nextNode = runs;
        runs->nextNode = close;
        close->nextNode = end;
        runs->endsPattern = false;
        const RE_Tree tree(u"(.)(a)", 6, kPlain, &host, open, nullptr, true);
        const std::string first = other == std::u16string(u"(b)(c)") ? "(2,1)" : "(0,1)";
        EXPECT_EQ("[0,4] " + first + " (2,2)", shown(Match(tree.match(u"xabc", 0)).get())) << printable(other);
    }
}

// Expressions see the attempt that they are in, also after texts that were included: a text runs in the same state.
TEST(MatchBool, LeavesTheStartOfAttemptsWithDynamicTexts) {
    HostJournal host;
    std::u16string seen;
    host.answers[u"t"] = [](const HostJournal::Inputs&) { return std::optional<std::u16string>(u"b+"); };
    host.answers[u"s($0)"] = [&](const HostJournal::Inputs& inputs) {
        seen += inputs.at(0) + u";";
        return std::optional<std::u16string>(u"");
    };
    ScriptedRun run(u"(a)(??@t)(?@s($0))c", host);
    run.search(u"xabbc");
    EXPECT_EQ(u"abb;", seen);
}

}  // namespace
}  // namespace corvane_tests
