// One compiled pattern searched by several threads at once: searches share nothing but the read-only graph.
//
// The oracle is what each thread finds alone. That catches shared state which changes answers; shared state that does
// not is caught by TSan, under which these tests run longer (`./dev sanitize`).
#include "tests/support/scripted_host.h"
#include "regexp/base/search_limits.h"
#include "regexp/options/compile_options.h"

#include <gtest/gtest.h>
#include <chrono>
#include <thread>

namespace corvane_tests {
namespace {

constexpr size_t kThreads = 16;
constexpr size_t kRounds = 40;

/// Different lengths of one repeating text, so that threads are in different places at the same time.
std::vector<std::u16string> subjects() {
    std::vector<std::u16string> result;
    for (size_t length = 1; length <= 200; length += 13) {
        std::u16string subject;
        while (subject.size() < length) {
            subject += u"aabxab abcab ";
        }
        result.push_back(subject + u"ccab");
    }
    return result;
}

/// All texts, from the `first` on, so that threads are at different texts.
std::vector<std::string> answers(const Engine& engine, const std::vector<std::u16string>& texts, size_t first) {
    std::vector<std::string> result(texts.size());
    for (size_t step = 0; step < texts.size(); ++step) {
        const size_t index = (first + step) % texts.size();
        result[index] = describe(engine.search(texts[index], step % 5));
        RE_Seek_Table table;
        result[index] += describe(engine.search(texts[index], 0, table));
    }
    return result;
}

const std::vector<size_t> kNoneWrong(kThreads, 0);

/// Repeats the `work` of each thread, `rounds` times and under TSan for `seconds` at least. Returns for each thread how
/// often the work did not give what it gave at first, on the thread that starts the others.
template <typename Work>
std::vector<size_t> wrongAnswers(size_t rounds, const Work& work, [[maybe_unused]] int seconds = 0) {
    auto end = std::chrono::steady_clock::now();
#if defined(__SANITIZE_THREAD__)
    end += std::chrono::seconds(seconds);
#endif
    std::vector<size_t> wrong(kThreads, 0);
    std::vector<std::thread> threads;
    for (size_t own = 0; own < kThreads; ++own) {
        threads.emplace_back([&, own, expected = work(own)] {
            for (size_t round = 0; round < rounds || std::chrono::steady_clock::now() < end; ++round) {
                wrong[own] += work(own) != expected ? 1U : 0U;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return wrong;
}

class Threads : public testing::TestWithParam<const char*> {};

TEST_P(Threads, SearchingOneTreeGetTheAnswersOfOneThread) {
    for (const bool profile : {false, true}) {
        const Engine engine(widen(GetParam()), kEmptyToo, {true, true, true, 16, profile, !profile, !profile});
        const std::vector<std::u16string> texts = subjects();
        EXPECT_EQ(kNoneWrong, wrongAnswers(kRounds, [&](size_t own) { return answers(engine, texts, own); }));
    }
}

INSTANTIATE_TEST_SUITE_P(Patterns, Threads,
                         testing::Values("(a|ab)*c", "(?:a{1,3}b){2,30}?x", "(?>a+)(b)\\1?", "(?<=(a+))b(?!x)",
                                         "(a)?(?(1)b|c)", ".*?(?:ab|c)+c", "(?i)ABC|X\\w"));

// Trees that become fast while eight threads search them: each is new, so that all threads are there when it happens.
TEST(SpeedingThreads, GetTheAnswersOfAPatternThatStaysSlow) {
    const std::vector<std::u16string> texts = subjects();
    for (const char* const pattern : {"(a|ab)*c", "(\\w+) (?=c)", "(?:a+)+c", "x?b ", "[ab]+(c)?", "(b)\\1?x"}) {
        const Engine slow(widen(pattern), kEmptyToo);
        for (std::uint64_t round = 0; round < 30; ++round) {
            RE_Tuning soon;
            soon.machineCodeSteps = soon.automatonChoices = 40 * round;
            soon.inquiryChoices = soon.ambiguousInquiryChoices = 1;
            const RE_Tuning::Scope scope(soon);
            const Engine engine(widen(pattern), kEmptyToo, {.speedsUpItself = true});
            std::vector<std::vector<std::string>> found(8);
            std::vector<std::thread> threads;
            for (size_t own = 0; own < found.size(); ++own) {
                threads.emplace_back([&, own] { found[own] = answers(engine, texts, own); });
            }
            for (size_t own = 0; own < found.size(); ++own) {
                threads[own].join();
                EXPECT_TRUE(found[own] == answers(slow, texts, own)) << pattern << " round " << round;
            }
        }
    }
}

TEST(SharingThreads, ShareOnePatternAndOneReplacement) {
    const RE_Tree tree(u"(?<w>a|ab)+?(?:c|(b))|x{2,3}\\s", false);
    const RE_Replace replace(u"[$2$<w>\\n$`]");
    const std::vector<std::u16string> texts = subjects();
    EXPECT_EQ(kNoneWrong, wrongAnswers(
                              1, [&](size_t own) { return replace.replace(texts[own], tree, own % 2 == 0, 0); }, 30));
}

// A context belongs to one thread, and so does what was compiled with it.
TEST(EvaluatingThreads, HaveAContextEach) {
    const std::vector<std::u16string> texts = subjects();
    const auto evaluated = [&](size_t own) {
        HostJournal host;
        host.answers[u"twice $1"] = [](const HostJournal::Inputs& in) { return in[0] + in[0]; };
        host.answers[u"short $1"] = [](const HostJournal::Inputs& in) {
            return in[0].size() < 3 ? std::optional<std::u16string>(u"") : std::nullopt;
        };
        ScriptedRun run(u"([ab]+)(?@see $1)(?(?@short $1)c|(??@twice $1)|(??[ x]$1))", host);
        const Corvane::regexp::CompileOptions options;
        ScriptedHost writer(options, host);
        const RE_Replace replace(u"<${twice $1}>", 13, RE_FLAG_EVALUATE, &writer);
        return run.search(texts[own]) + printable(replace.replace(texts[own], run.tree(), false, 0));
    };
    EXPECT_NE(evaluated(1), evaluated(2));
    EXPECT_EQ(kNoneWrong, wrongAnswers(1, evaluated, 30));
}

// Requests come at any moment of searches that take longer than anybody waits: by the match loop, within scans, by machine
// code, and in patterns compiled during the search. If one is not seen, the budget ends the test.
TEST(CancellingThreads, EndTheSearchesOfOthers) {
    const std::u16string text(2'000'000, u'a');
    HostJournal host;
    host.answers[u"f()"] = [](const HostJournal::Inputs&) { return std::optional<std::u16string>(u"a?"); };
    struct {
        const char16_t* pattern;
        bool machineCode;
    } const cases[] = {{u"(?:(a+)\\1?)+b|(a*)\\2c", false},
                       {u"a[^x]{1,65000}+[xy]", false},
                       {u"(\\w)\\w*\\d", true},
                       {u"(a|(??@f()))*\\1{7}c", false}};
    for (const auto& [pattern, machineCode] : cases) {
        Corvane::regexp::CompileOptions options;
        HostJournal own = host;
        ScriptedRun run(pattern, own, kPlain, {.machineCode = machineCode});
        for (int way = 0; way < 2; ++way) {
            std::stop_source source;
            const RE_Search_Limits limits{.steps = 20'000'000'000, .stop = source.get_token()};
            RE_Search_Report report;
            std::thread searching([&] {
                if (way == 0) {
                    delete run.tree().match(text.data(), text.size(), 0, limits, report);
                } else {
                    EXPECT_EQ(text, RE_Replace(u"").replace(text, run.tree(), false, 0, limits, report));
                }
            });
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            source.request_stop();
            searching.join();
            EXPECT_EQ(RE_Search_Outcome::cancelled, report.outcome) << printable(pattern);
        }
    }
}

TEST(CompilingThreads, BuildAndSearchTheirOwnTrees) {
    EXPECT_EQ(kNoneWrong, wrongAnswers(kRounds, [](size_t own) {
                  return describe(Engine(u"(a|b)*(?<n>c{1,20})" + std::u16string(own, u'?')).search(u"xabbcc"));
              }));
}

}  // namespace
}  // namespace corvane_tests
