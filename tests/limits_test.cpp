// Limits of a search, and what is reported of its end: for one match, a walk over all matches and a replacement.
//
// The oracle is the same search without limits: a limit changes the answer to "given up" and to nothing else. Requests to
// stop from other threads are in threads_test.cpp; here they come at an exact place of the work.
#include "host/allocation_counter.h"
#include "host/memory_hook.h"
#include "tests/support/differential.h"
#include "tests/support/scripted_host.h"
#include "regexp/base/search_limits.h"
#include "regexp/state/search_info.h"

#include <gtest/gtest.h>
#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>

namespace corvane_tests {
namespace {

using Outcomes = RE_Search_Outcome;

struct Searched {
    bool matched;
    RE_Search_Report report;
};

Searched searchWithin(const RE_Tree& tree, const std::u16string& text, const RE_Search_Limits& limits) {
    RE_Search_Report report;
    const std::unique_ptr<RE_Results> match(tree.match(text.data(), text.size(), 0, limits, report));
    return {match != nullptr, report};
}

// Steps are a promise: a change of these numbers is a change that users notice. Passes may lessen them, so they are
// counted on the plain graph.
TEST(Limits, CountTheSameStepsForeverAndEverywhere) {
    const std::u16string as(1000, u'a');
    // clang-format off
    const std::tuple<const char16_t*, std::u16string, Outcomes, std::uint64_t> cases[] = {
        {u"abc", u"xxabc", Outcomes::matched, 10},  // twice two nodes, then six: those of the text and three empty ones
        {u"abc", u"xxabd", Outcomes::noMatch, 8},
        {u"(a|b)c", u"abac", Outcomes::matched, 21},
        {u"a*b", as, Outcomes::noMatch, 19967},
        {u"(?:a|ab)*c", as, Outcomes::noMatch, 29974},
        {u"(a)\\1", u"xaa", Outcomes::matched, 10},
    };
    // clang-format on
    for (const auto& [pattern, text, outcome, steps] : cases) {
        const Engine plain(pattern, kPlain, {false, false, false, 0, false});
        const RE_Tree& tree = plain.tree();
        for (int again = 0; again < 2; ++again) {
            const Searched searched = searchWithin(tree, text, {});
            EXPECT_EQ(outcome, searched.report.outcome) << printable(pattern);
            EXPECT_EQ(steps, searched.report.steps) << printable(pattern);
            EXPECT_EQ(outcome == Outcomes::matched, searched.matched);
        }
    }
}

// Each leads through other parts of a search, at whose steps the budget may end.
const char16_t* const kPatterns[] = {u"(?:a|b|ab)*c", u"(a+)+$",     u"(?=(?:a|ab)+c)a", u"(?<=(?:b|a)*)c",
                                     u"a*?(b)\\1x",   u"(?>a|ab)+c", u"[ab]*c",          u"(?:a{2,3}b?){2,}c"};

// Every budget from nothing to one more than enough. One step less than a search takes must not be an answer, and the
// steps of an answer must not depend on the budget.
TEST(Limits, GiveTheAnswerExactlyWhenTheBudgetSuffices) {
    for (const char16_t* pattern : kPatterns) {
        for (const std::u16string& text : {std::u16string(40, u'a'), std::u16string(u"aabaabaabbxabc")}) {
            const RE_Tree tree(pattern, false);
            const Searched whole = searchWithin(tree, text, {});
            ASSERT_TRUE(whole.report.isComplete());
            for (std::uint64_t steps = 0; steps <= whole.report.steps + 1; ++steps) {
                const Searched part = searchWithin(tree, text, {.steps = steps});
                const bool enough = part.report.isComplete();
                EXPECT_EQ(enough ? whole.report.outcome : Outcomes::stepsSpent, part.report.outcome);
                EXPECT_TRUE(enough ? part.report.steps == whole.report.steps : part.report.steps >= steps);
                EXPECT_TRUE(enough || steps <= whole.report.steps) << printable(pattern) << " with " << steps;
                EXPECT_EQ(enough && whole.matched, part.matched) << printable(pattern) << " with " << steps;
            }
        }
    }
}

// Ceilings from nothing to more than enough. What a search says that it took at most has to be enough for it.
TEST(Limits, HoldTheMemoryOfASearchUnderItsCeiling) {
    const StaySlow scope;  // or the patterns would grow in between
    for (const char16_t* pattern : kPatterns) {
        const RE_Tree tree(pattern, false);
        const std::u16string text(700, u'a');
        const Searched whole = searchWithin(tree, text, {});
        for (std::uint64_t bytes = 0; bytes < whole.report.peakBytes + 100; bytes += 1 + whole.report.peakBytes / 60) {
            utAllocationCounter counter;
            const Searched part = searchWithin(tree, text, {.bytes = bytes});
            EXPECT_EQ(0, counter.live());
            const bool enough = bytes >= whole.report.peakBytes;
            EXPECT_EQ(enough ? whole.report.outcome : Outcomes::memoryFull, part.report.outcome) << printable(pattern);
            EXPECT_LE(part.report.peakBytes, std::max<std::uint64_t>(bytes, 500)) << "but for the first state";
        }
    }
}

// A token around a run is two steps more, also where the scan of the run leads over a checkpoint.
TEST(Limits, CountTheStepsOfATokenAroundARun) {
    const RE_Tree bare(u"^(?:a+)[bc]", false);
    const RE_Tree inToken(u"^(a+)[bc]", false);
    for (const size_t length : {size_t{100}, size_t{4'190'500}, size_t{4'194'304}}) {
        const std::u16string text(length, u'a');
        EXPECT_EQ(searchWithin(bare, text, {}).report.steps + 2, searchWithin(inToken, text, {}).report.steps)
            << length;
    }
}

// What a search took for one subject is released before the next: the ceiling is not for their sum.
TEST(Limits, HoldForEachSubjectOfASequenceAnew) {
    const RE_Tree tree(u"(?:a|ab|b)*c", false);
    const RE_Search_Limits limits{.bytes = 400'000};
    const std::u16string text = repeated(u"ab", 3000);
    RE_Match_Sequence sequence(tree, text, &limits);
    for (int round = 0; round < 60; ++round) {
        EXPECT_EQ(nullptr, sequence.find(0));
        ASSERT_EQ(Outcomes::noMatch, sequence.report().outcome) << round;
        sequence.use(text);
    }
}

// Twenty thousand attempts each take a token; the memory for them has to come back, or the ceiling is met.
TEST(Limits, AttemptsThatFailLeaveNothingBehind) {
    const std::u16string text(20'000, u'a');
    for (const char16_t* pattern : {u"(?=(a))\\1[^a]", u"(?>(a))\\1[^a]"}) {
        const Searched searched = searchWithin(RE_Tree(pattern, false), text, {.bytes = 100'000});
        EXPECT_EQ(Outcomes::noMatch, searched.report.outcome) << printable(pattern);
    }
}

// Not for each match anew: the budget of one walk is what all of its searches take together.
TEST(Limits, HoldForAWalkAndAReplacementAsAWhole) {
    const RE_Tree tree(u"(?:a|ab)+c", false);
    const std::u16string text = u"-ac-aabc-abac-" + std::u16string(300, u'a');
    auto all = tree.find_all(text, 0, RE_Search_Limits{});
    const auto count = [](auto& range) {
        size_t found = 0;
        for (auto it = range.begin(); it != range.end(); ++it) {
            ++found;
        }
        return found;
    };
    EXPECT_EQ(3u, count(all));
    const std::uint64_t steps = all.report().steps;
    EXPECT_EQ(Outcomes::matched, all.report().outcome);
    for (const std::uint64_t budget : {steps, steps - 1, steps / 50, std::uint64_t{0}}) {
        const RE_Search_Limits limits{.steps = budget};
        auto some = tree.find_all(text, 0, limits);
        const auto found = count(some);
        EXPECT_EQ(budget == steps ? Outcomes::matched : Outcomes::stepsSpent, some.report().outcome);
        EXPECT_FALSE(some.interrupted());
        RE_Search_Report report;
        const std::u16string replaced = RE_Replace(u"").replace(text, tree, false, 0, limits, report);
        EXPECT_EQ(some.report().outcome, report.outcome);
        EXPECT_EQ(some.report().steps, report.steps);
        EXPECT_EQ(text.size() - (found > 0 ? 2u : 0u) - (found > 1 ? 4u : 0u) - (found > 2 ? 4u : 0u), replaced.size())
            << "the rest stays";
    }
}

using Clock = std::chrono::steady_clock;
const RE_Search_Limits::Time kPast = Clock::now() - std::chrono::hours(1);

/// Requests to stop in the midst of the work: when the engine asks for its n-th block.
class CancelAt final : public utAllocationHook {
public:
    CancelAt(std::stop_source& stopSource, int block)
        : source(stopSource), left(block), previous(utSetAllocationHook(this)) {}
    ~CancelAt() override { utSetAllocationHook(previous); }
    bool allow(size_t) noexcept override {
        if (--left == 0) {
            source.request_stop();
        }
        return true;
    }
    void allocated() noexcept override {}
    void freed() noexcept override {}

private:
    std::stop_source& source;
    int left;
    utAllocationHook* previous;
};

using Work = std::function<RE_Search_Report(const RE_Tree& tree, const std::u16string& text, const RE_Search_Limits&)>;

/// The ways of searching that take limits. The text has no match.
const std::pair<const char*, Work> kWork[] = {
    {"match",
     [](const RE_Tree& tree, const std::u16string& text, const RE_Search_Limits& limits) {
         const Searched searched = searchWithin(tree, text, limits);
         EXPECT_FALSE(searched.matched);
         return searched.report;
     }},
    {"find_all",
     [](const RE_Tree& tree, const std::u16string& text, const RE_Search_Limits& limits) {
         auto range = tree.find_all(text, 0, limits);
         EXPECT_TRUE(range.begin() == range.end());
         EXPECT_FALSE(range.interrupted());
         return range.report();
     }},
    {"replace",
     [](const RE_Tree& tree, const std::u16string& text, const RE_Search_Limits& limits) {
         RE_Search_Report report;
         EXPECT_EQ(text, RE_Replace(u"-").replace(text, tree, false, 0, limits, report)) << "the text stays";
         return report;
     }},
};

// Before the work even the shortest search sees it, during the work a long one. The tree is as good as before.
TEST(Limits, EndSearchesThatAreCancelledOrLate) {
    for (const bool isLong : {true, false}) {
        const RE_Tree tree(isLong ? u"(?:a|aa)*c" : u"x", false);
        const std::u16string text(isLong ? 30000 : 3, u'a');
        for (const auto& [name, work] : kWork) {
            const RE_Search_Report whole = work(tree, text, {});
            EXPECT_EQ(Outcomes::noMatch, whole.outcome);
            std::stop_source before;
            before.request_stop();
            EXPECT_EQ(Outcomes::cancelled, work(tree, text, {.stop = before.get_token()}).outcome) << name;
            EXPECT_EQ(Outcomes::deadlinePassed, work(tree, text, {.deadline = kPast}).outcome) << name;
            if (isLong) {
                std::stop_source during;
                const CancelAt hook(during, 12);
                const RE_Search_Report part = work(tree, text, {.stop = during.get_token()});
                EXPECT_EQ(Outcomes::cancelled, part.outcome) << name;
                EXPECT_LT(0u, part.steps) << name;
                EXPECT_LT(part.steps, whole.steps) << name;
            }
            const RE_Search_Report again = work(tree, text, {});
            EXPECT_EQ(whole.outcome, again.outcome) << name;
            EXPECT_EQ(whole.steps, again.steps) << name;
        }
    }
}

// Nobody requests anything, and the day is far: outcome, steps and memory are those of a search without either.
TEST(Limits, WithoutARequestAndFarFromTheDeadlineChangeNothing) {
    const std::stop_source nobody;
    const RE_Search_Limits idle{.stop = nobody.get_token(), .deadline = Clock::now() + std::chrono::hours(24)};
    for (const char16_t* pattern : kPatterns) {
        for (const std::u16string& text :
             {std::u16string(700, u'a'), std::u16string(u"aabaabaabbxabc"), std::u16string(200'000, u'b')}) {
            const StaySlow scope;  // or the patterns would grow in between
            const RE_Tree tree(pattern, false);
            const Searched expected = searchWithin(tree, text, {});
            const Searched found = searchWithin(tree, text, idle);
            EXPECT_EQ(expected.matched, found.matched) << printable(pattern);
            EXPECT_EQ(expected.report.outcome, found.report.outcome) << printable(pattern);
            EXPECT_EQ(expected.report.steps, found.report.steps) << printable(pattern);
            EXPECT_EQ(expected.report.peakBytes, found.report.peakBytes) << printable(pattern);
        }
    }
}

// A search for a start, and a loop, each over 200,000 units without a step in between. What was not scanned was not found.
TEST(Limits, AreSeenWithinALongScan) {
    const std::u16string text = std::u16string(200'000, u'a') + u"bcd";
    std::stop_source source;
    source.request_stop();
    const RE_Search_Limits cancelled{.stop = source.get_token()}, late{.deadline = kPast};
    for (const auto& [limits, outcome] :
         {std::pair(&cancelled, Outcomes::cancelled), std::pair(&late, Outcomes::deadlinePassed)}) {
        for (const char16_t* pattern : {u"b", u"(?i)bcd", u"[bc]d", u"b+c", u"bc|bd", u"(b)c"}) {
            const Engine engine(pattern);
            RE_Search_Info info(text.data(), text.size(), 1, nullptr, false);
            info.heed(limits);
            EXPECT_EQ(nullptr, engine.tree().getRoot()->seek(info.subjectBegin, info)) << printable(pattern);
            EXPECT_EQ(outcome, info.stopReason()) << printable(pattern);
        }
        for (const char16_t* pattern : {u"a*", u"a*?b", u"(a*+)b", u"(?:a|b)*c"}) {
            const Engine engine(pattern);
            RE_Search_Info info(text.data(), text.size(), 1, nullptr, false);
            info.heed(limits);
            info.resetForStart(info.subjectBegin);
            std::size_t length = 0;
            EXPECT_FALSE(engine.tree().match_bool(info.subjectBegin, &length, &info)) << printable(pattern);
            EXPECT_EQ(outcome, info.stopReason()) << printable(pattern);
        }
    }
}

// The request comes from the host. Each start calls it once and fails after it, so that the next one asks.
TEST(Limits, EndASearchInTheMidstOfDynamicTexts) {
    for (const char16_t* pattern : {u"(??@f())c", u"a(?(?@f())b|c)", u"(?=(??@f())x)a", u"(?@f())c"}) {
        std::stop_source source;
        HostJournal host;
        int calls = 0;
        host.answers[u"f()"] = [&](const HostJournal::Inputs&) {
            if (++calls == 7) {
                source.request_stop();
            }
            return std::optional<std::u16string>(u"a");
        };
        const ScriptedRun run(pattern, host);
        const std::u16string text(1000, u'a');
        EXPECT_EQ(Outcomes::cancelled, searchWithin(run.tree(), text, {.stop = source.get_token()}).report.outcome)
            << printable(pattern);
        EXPECT_LE(calls, 8) << printable(pattern);
    }
}

// What was found before the request stays found; the walk and the replacement end before the next match.
TEST(Limits, EndAWalkBetweenItsMatches) {
    const RE_Tree tree(u"a", false);
    const std::u16string text(10, u'a');
    std::stop_source source;
    const RE_Search_Limits limits{.stop = source.get_token()};
    auto range = tree.find_all(text, 0, limits);
    size_t found = 0;
    for (auto it = range.begin(); it != range.end(); ++it) {
        if (++found == 3) {
            source.request_stop();
        }
    }
    EXPECT_EQ(3u, found);
    EXPECT_EQ(Outcomes::cancelled, range.report().outcome);

    RE_Match_Sequence sequence(tree, text, &limits);
    EXPECT_EQ(nullptr, sequence.find(0));
    EXPECT_EQ(nullptr, sequence.find(0)) << "it is over";
    sequence.use(text);
    EXPECT_EQ(nullptr, sequence.find(0)) << "so are all that heed the request";
    EXPECT_EQ(Outcomes::cancelled, sequence.report().outcome);
}

// In the right order of magnitude, sets included, and the same for the same pattern.
TEST(Tree, KnowsTheMemoryItHolds) {
    utAllocationCounter counter;
    const RE_Tree small(u"ab", false), large(std::u16string(10000, u'a'), false),
        sets(u"[\\w\\x{2014}]+[^\\w-]", false);
    EXPECT_LT(small.memoryUse(), 2000u);
    EXPECT_LT(20000u, large.memoryUse());
    EXPECT_LT(2u * 8192u, sets.memoryUse()) << "tables of sets count";
    EXPECT_EQ(small.memoryUse(), RE_Tree(u"ab", false).memoryUse());
}

}  // namespace
}  // namespace corvane_tests
