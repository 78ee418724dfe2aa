// What the host is asked: which operation, in which order, with which texts, how often.
//
// The oracle is a journal that a scripted host keeps. For fixed patterns it is compared with a written one, for random
// ones with the journal of the plain graph without a memo, which defines the calls (docs/execution-model.md,
// "Expressions and dynamic texts").
#include "host/allocation_counter.h"
#include "host/interrupt.h"
#include "regexp/eval/expressions/evaluators.h"
#include "regexp/options/compile_options.h"
#include "tests/support/pattern_random.h"
#include "tests/support/differential.h"
#include "tests/support/scripted_host.h"

#include <gtest/gtest.h>

namespace corvane_tests {
namespace {

using Inputs = HostJournal::Inputs;
using Text = std::optional<std::u16string>;

/// `even` of a number, `double` of a text, `nothing`; scripts are run and forgotten.
HostJournal journal() {
    HostJournal host;
    const auto isEven = [](const Inputs& in) {
        return !in[0].empty() && (in[0].back() - u'0') % 2 == 0 ? Text(u"yes") : std::nullopt;
    };
    host.answers = {{u"even($1)", isEven},
                    {u"double($1)", [](const Inputs& in) { return Text(in[0] + in[0]); }},
                    {u"double($&)", [](const Inputs& in) { return Text(in[0] + in[0]); }},
                    {u"nothing", [](const Inputs&) { return Text(); }}};
    return host;
}

const Corvane::regexp::CompileOptions defaults;

/// A pattern, what is called while it is compiled, a subject, and after the result what is called while it is searched.
struct Contract {
    const char16_t* pattern;
    const char* compiled;
    const char16_t* subject;
    const char* searched;
};

const Contract contracts[] = {
    // No references: no variables, an empty list. The calls of every start position are made.
    {u"(?@f)b", "may interrupt; set (?@f)b; may evaluate; may interrupt; clone; set f", u"ab",
     "[1,1] | run f() of f(); run f() of f()"},
    // Repeated references are one variable; named, absent and special ones have their texts.
    {u"(a)(?<n>b)(?@f($1,$<n>,$1,$9,$&))c",
     "may interrupt; set (a)(?<n>b)(?@f($1,$<n>,$1,$9,$&))c; may evaluate; may interrupt; clone; "
     "set f($1,$<n>,$1,$9,$&); var token_1 for $1; var n for $<n>; var token_9 for $9; var matched for $&",
     u"xabc",
     "[1,3] t0=(1,1) t1=(2,1)n | run f(token_1,n,token_1,token_9,matched)(token_1,n,token_9,matched) of "
     "f($1,$<n>,$1,$9,$&)(a,b,$9,ab)"},
    // Tokens are those closed so far in this attempt; a name that no token has stays as it is written.
    {u"((?@i $1 $<x>)a)(?@o $1)",
     "may interrupt; set ((?@i $1 $<x>)a)(?@o $1); may evaluate; may interrupt; clone; set i $1 $<x>; "
     "var token_1 for $1; var x for $<x>; may evaluate; may interrupt; clone; set o $1; var token_1 for $1",
     u"a", "[0,1] t0=(0,1) | run i token_1 x(token_1,x) of i $1 $<x>($1,$<x>); run o token_1(token_1) of o $1(a)"},
    // Functions are made when the pattern is compiled, conditionals counted before.
    {u"(\\d+)(?(?@even($1))e|o)",
     "may interrupt; set (\\d+)(?(?@even($1))e|o); may evaluate; conditional; may interrupt; clone; set even($1); "
     "var token_1 for $1; function even(token_1)(token_1)",
     u"12o 14e",
     "[4,3] t0=(4,2) | truth of even($1)(12); truth of even($1)(1); truth of even($1)(2); "
     "truth of even($1)(14)"},
    // A text is compiled at every place where it is tried; its context is the pattern's.
    {u"(a|b)(??@double($1))c",
     "may interrupt; set (a|b)(??@double($1))c; may evaluate; may interrupt; clone; set double($1); "
     "var token_1 for $1; function double(token_1)(token_1)",
     u"abbbc",
     "[1,4] t0=(1,1) | text of double($1)(a); may interrupt; set aa; text of double($1)(b); may interrupt; "
     "set bb"},
    {u"(a+)(??$1)b", "may interrupt; set (a+)(??$1)b; may evaluate; may interrupt", u"aaaab",
     "[0,5] t0=(0,2) | may interrupt; set aaaa; may interrupt; set aaa; may interrupt; set aa"},
    // A failed evaluation is a failed node.
    {u"a(?:(??@nothing)|b)",
     "may interrupt; set a(?:(??@nothing)|b); may evaluate; may interrupt; clone; set nothing; function nothing()",
     u"ab", "[0,2] | text of nothing()"},
    {u"a(?:(??x${nothing}${double($&)})|b)",
     "may interrupt; set a(?:(??x${nothing}${double($&)})|b); may evaluate; may interrupt; may evaluate; may "
     "interrupt; "
     "clone; set nothing; function nothing(); may evaluate; may interrupt; clone; set double($&); var matched for $&; "
     "function double(matched)(matched)",
     u"ab", "[0,2] | text of nothing()"},
    // A construct is compiled once however often its loop is copied, and evaluated at each required pass.
    {u"(?:(?@f)a){2,3}", "may interrupt; set (?:(?@f)a){2,3}; may evaluate; may interrupt; clone; set f", u"aaa",
     "[0,3] | run f() of f(); run f() of f(); run f() of f()"},
    {u"(?@f){3}a(?@g)*",
     "may interrupt; set (?@f){3}a(?@g)*; may evaluate; may interrupt; clone; set f; "
     "may evaluate; may interrupt; clone; set g",
     u"a", "[0,1] | run f() of f(); run f() of f(); run f() of f(); run g() of g()"},
    // No expressions inside expressions; outside of them, in a dynamic text, they are allowed.
    {u"(?@f ${$1})",
     "may interrupt; set (?@f ${$1}); may evaluate; may interrupt; warning 17 at {; warning 21 at $; clone; "
     "set f ${$1}; var token_1 for $1",
     u"", "null | run f ${token_1}(token_1) of f ${$1}($1)"},
    {u"(.)(??x${double($1)})",
     "may interrupt; set (.)(??x${double($1)}); may evaluate; may interrupt; may evaluate; may interrupt; clone; "
     "set double($1); var token_1 for $1; function double(token_1)(token_1)",
     u"axaa", "[0,4] t0=(0,1) | text of double($1)(a); may interrupt; set xaa"},
};

// Under every setting: a call that a pass moves, drops or repeats is one that the host sees.
TEST(Evaluation, CallsTheHostForWhatIsNeededInTheOrderOfTheText) {
    for (const Contract& contract : contracts) {
        for (const EngineConfig& config : allConfigs()) {
            SCOPED_TRACE(testing::Message() << printable(contract.pattern) << ' ' << config);
            HostJournal host = journal();
            ScriptedRun run(contract.pattern, host, kPlain, config);
            std::string compiled = host.text();
            if (const auto at = compiled.find("warning"); at != std::string::npos) {
                SCOPED_TRACE(compiled);
            }
            EXPECT_EQ(contract.compiled, compiled);
            EXPECT_EQ(contract.searched, run.search(contract.subject));
            EXPECT_FALSE(utInterruptState::IsInterruptPending());
        }
    }
}

/// The journal of one search, up to a thousand calls: some patterns call without end.
std::string callsOf(const std::u16string& pattern, const std::u16string& subject, RE_Flags flags,
                    const EngineConfig& config, bool memo) {
    const Delays delays(memo ? 0 : 5000);  // with the first choice taken up again, or once most of these are over
    HostJournal host = journal();
    host.throwAt = 1000;  // of patterns that call without end the first calls are compared
    host.answers[u"q$1"] = [](const Inputs& in) { return in[0].size() % 2 == 0 ? Text(u"a|ab?") : Text(u"(b+)"); };
    host.answers[u"c$1"] = [](const Inputs& in) { return in[0].size() % 2 == 0 ? Text(u"") : std::nullopt; };
    return ScriptedRun(pattern, host, flags, config).search(subject);
}

// The plain graph without a memo makes every call that plain backtracking makes. Whatever saves work elsewhere must not
// save a call.
TEST(Evaluation, IsNeverPrunedByMemoOrPasses) {
    const EngineConfig plain{false, false, false, 0, false};
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 63));
    constexpr unsigned without = kLookarounds | kDynamics;
    const std::u16string dynamics[] = {u"(?@s$1)",     u"(??@q$1)",     u"(?(?@c$1)a|b)",
                                       u"(?(?@c$1)a)", u"(?(?@c$1)|b)", u"(??a|$1)"};
    const unsigned long rounds = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 60 : 800);
    for (unsigned long round = 0; round < rounds; ++round) {
        const auto piece = [&] { return u"(?:" + source.pattern(without) + u")"; };
        const std::u16string dynamic = dynamics[source.below(std::size(dynamics))];
        const std::u16string templates[] = {piece() + dynamic + piece(), u"(?:" + piece() + dynamic + u")*" + piece(),
                                            piece() + u"(?=" + dynamic + piece() + u")" + piece(),
                                            u"(?:" + dynamic + u"|" + piece() + u"){2,3}?" + piece()};
        const std::u16string pattern = templates[source.below(4)];
        const std::u16string subject = source.subject(7);
        const RE_Flags flags = source.below(2) == 0 ? kPlain : kEmptyToo;
        const std::string expected = callsOf(pattern, subject, flags, plain, false);
        const EngineConfig& config = allConfigs()[source.below(allConfigs().size())];
        ASSERT_EQ(expected, callsOf(pattern, subject, flags, config, true))
            << printable(pattern) << " on " << printable(subject) << ' ' << config;
        ASSERT_EQ(expected, callsOf(pattern, subject, flags, config, false)) << printable(pattern) << ' ' << config;
    }
}

// Calls empty the memo. After the last one it has to work as ever: without it this search would not end.
TEST(Evaluation, KeepsTheMemoWhereNothingCallsTheHost) {
    HostJournal host = journal();
    const std::u16string text(200, u'a');
    EXPECT_EQ("null | run s() of s()", ScriptedRun(u"^(?@s)(?:a|aa)*(?:a+)+b", host).search(text));
}

/// Runs `work` with a host that throws at its first call, its second, and so on, until nothing is thrown.
template <typename Work>
int throwEverywhere(const Work& work) {
    for (int calls = 0;; ++calls) {
        HostJournal host = journal();
        host.throwAt = calls;
        const utAllocationCounter counter;
        bool thrown = false;
        try {
            work(host);
        } catch (const HostFailure&) {
            thrown = true;
        }
        EXPECT_EQ(0, counter.live()) << host.text();
        if (!thrown) {
            return calls;
        }
    }
}

// Every construct that calls the host, once.
const char16_t everything[] =
    u"(?<n>a|b)\\1?(?@f $1 $<n>)(?(?@even($1))x|(?>(??@double($1))))(??$1${double($1)}\\q)c\\z";
const char16_t itsSubject[] = u"xaaaaaaqcz";

// While compiling, while searching and while replacing. The numbers at the end say that the throws did happen.
TEST(Evaluation, MayThrowAtEveryCall) {
    const int tree = throwEverywhere([](HostJournal& host) {
        const ScriptedRun run(everything, host);
        EXPECT_EQ("[1,9] t0=(1,1)n", describe(run.outcome(itsSubject)));
    });
    EXPECT_GT(tree, 40);
    const RE_Tree letters(u"\\w", false);
    const int replacement = throwEverywhere([&](HostJournal& host) {
        ScriptedHost context(defaults, host);
        const std::u16string text = u"<$1\\q${double($&)}$&$";
        const RE_Replace replace(text.data(), text.size(), 0x12, &context);
        EXPECT_EQ(u"<$1qaaa$ <$1qbbb$", replace.replace(u"a b", letters, false, 0));
    });
    EXPECT_GT(replacement, 10);
}

TEST(Evaluation, GivesBackAllMemoryWhenAnAllocationFails) {
    for (size_t failing = 1;; ++failing) {
        HostJournal host = journal();
        bool failed = false;
        utAllocationCounter counter;
        counter.failAt(failing);
        try {
            describe(ScriptedRun(everything, host).outcome(itsSubject));
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        failed = failed || counter.requests() >= failing;
        ASSERT_EQ(0, counter.live()) << failing;
        if (!failed) {
            break;
        }
    }
}

// A script may raise the flag. The search must not call the host a second time.
TEST(Evaluation, IsFollowedByAQuestionForInterrupts) {
    HostJournal host = journal();
    host.interruptible = true;
    int runs = 0;
    host.answers[u"stop"] = [&](const Inputs&) {
        utInterruptState::SetInterruptPending(true);
        return ++runs, Text();
    };
    for (const char16_t* pattern :
         {u"(?@stop)(?:a|b)x", u"(?:(??@stop)|a)x", u"(?:(??${stop})|a)x", u"(?(?@stop)b|a)x"}) {
        runs = 0;
        EXPECT_FALSE(ScriptedRun(pattern, host).outcome(u"aaaaaaaa").matched);
        EXPECT_EQ(1, runs);
        EXPECT_TRUE(utInterruptState::IsInterruptPending());
        utInterruptState::SetInterruptPending(false);
    }
}

// An expression without a value has no text to write. What was written up to there is the result, and the flag is up.
TEST(Evaluation, ThatFailsEndsAReplacement) {
    HostJournal host = journal();
    host.interruptible = true;
    host.answers[u"f($&)"] = [](const Inputs& in) { return in[0] == u"c" ? Text() : Text(in[0] + u"!"); };
    ScriptedHost context(defaults, host);
    const std::u16string text = u"<${f($&)}>";
    const RE_Replace replace(text.data(), text.size(), 0x12, &context);
    const RE_Tree letters(u"\\w", false);
    EXPECT_EQ(u"<a!> <b!> <>", replace.replace(u"a b c d", letters, false, 0));
    EXPECT_TRUE(utInterruptState::IsInterruptPending());
    utInterruptState::SetInterruptPending(false);
}

// A search within a search, of the same tree on the same thread: nothing of a search may be in the tree.
TEST(Evaluation, MaySearchWithTheSamePattern) {
    HostJournal host = journal();
    const ScriptedRun* again = nullptr;
    host.answers[u"inner($1)"] = [&](const Inputs& in) {
        return Text(in[0] == u"x" ? u"y" : again->outcome(u"xy").matched ? u"b" : u"c");
    };
    const ScriptedRun run(u"(.)(??@inner($1))", host);
    again = &run;
    EXPECT_EQ("[0,2] t0=(0,1)", describe(run.outcome(u"ab")));
}

// Equal texts are one input, and null is none.
TEST(EvaluationInputs, KeepEachTextOnce) {
    RE_Evaluation_Inputs inputs;
    for (const char* text : {"b", "a", "b", "", "a", "c", "d", "e", "f", "g", "h", "i"}) {
        inputs.add(new RE_Evaluation_IO(text));
    }
    inputs.add(nullptr);
    inputs.add(nullptr);
    RE_Evaluation_IO all("f:");
    RE_Evaluation_Inputs(&inputs).append_to_fcn_call(&all);
    EXPECT_EQ(u"f:b,a,,c,d,e,f,g,h,i,", std::u16string(all.get_string(), all.get_length()));
    EXPECT_EQ(11U, inputs.get_length());
}

// The source lies in the buffer that grows.
TEST(EvaluationIO, MayBeAppendedToItself) {
    std::u16string expected = u"ab";
    RE_Evaluation_IO text(expected.data(), expected.size());
    for (int i = 0; i < 4; ++i) {
        text.append(&text);
        text.append(text.get_string() + 1, 2);
        expected += expected;
        expected += expected.substr(1, 2);
    }
    EXPECT_EQ(expected, std::u16string(text.get_string(), text.get_length()));
}

// A host may refuse a single expression: it is then without a value, and a condition on it does not hold.
TEST(Evaluation, YieldsNothingWhereTheHostGivesNoContext) {
    struct Host : RE_Context {
        bool allow_evaluation() override { return true; }
        RE_Context* clone() override { return nullptr; }
    } host;
    const std::u16string pattern = u"(?@f $&)(?(?@g)a|b(?:(??@h)|(??${i})|c))";
    const RE_Tree tree(pattern.data(), pattern.size(), kPlain, &host);
    EXPECT_EQ("[1,2]", describe(toOutcome(std::unique_ptr<RE_Results>(tree.match(u"abc", 0)).get())));
}

}  // namespace
}  // namespace corvane_tests
