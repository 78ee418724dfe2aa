// Looking inside: graphs, profiles and traces. They must report of one search what its result says.
//
// The oracles are each other: a trace that is added up gives the profile, and both give the result of a search that
// nobody watches. The grammar of graphs is judged by Graphviz, where it is installed.
#include "regexp/search/observer.h"
#include "regexp/graph/node.h"
#include "regexp/regexp.h"
#include "regexp/state/search_info.h"
#include "tests/support/case_file.h"
#include "tests/support/engine_run.h"
#include "tests/support/pattern_random.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <thread>
#include <unistd.h>

namespace corvane_tests {
namespace {

// Every pattern of the tables once, malformed ones too: labels have to be readable for all.
std::vector<std::u16string> tablePatterns() {
    std::vector<std::u16string> patterns;
    for (const char* table :
         {"tokens", "repetition", "closed_bodies", "anchors", "units", "searching", "malformed", "differences"}) {
        for (const MatchCase& match : readCaseFile(std::string(CORVANE_TEST_DATA_DIR "/") + table + ".txt")) {
            patterns.push_back(match.pattern);
        }
    }
    std::ranges::sort(patterns);
    patterns.erase(std::unique(patterns.begin(), patterns.end()), patterns.end());
    return patterns;
}

// Each unit that there is, in a literal, 256 to a pattern, so that no label is shortened; and a long one, which is.
std::vector<std::u16string> patternsOfAllUnits() {
    std::vector<std::u16string> patterns;
    for (unsigned first = 0; first < 0x10000; first += 256) {
        std::u16string text;
        for (unsigned unit = first; unit < first + 256; ++unit) {
            text += static_cast<char16_t>(unit);
        }
        patterns.push_back(RE_Translate::escape(text));
    }
    patterns.push_back(std::u16string(2000, u'\u00E9') + std::u16string(20000, u'&'));
    return patterns;
}

// All graphs in one file, as starting the program takes longer than drawing. Its complaints fail the test.
TEST(Graph, IsDrawnByGraphvizWithoutAComplaint) {
    if (std::system("command -v dot >/dev/null") != 0) {
        GTEST_SKIP() << "Graphviz is not installed";
    }
    const std::string name = testing::TempDir() + "corvane-" + std::to_string(::getpid());
    std::vector<std::u16string> patterns = tablePatterns();
    EXPECT_GT(patterns.size(), 200u);
    for (const std::u16string& units : patternsOfAllUnits()) {
        patterns.push_back(units);
    }
    std::ofstream file(name + ".dot", std::ios::binary);
    for (const std::u16string& pattern : patterns) {
        file << RE_Tree(pattern, false).graph() << RE_Replace(pattern).graph();
    }
    file.close();
    const std::string graph = name + ".dot", picture = name + ".svg", complaints = name + ".err";
    const std::string draw = "dot -Tsvg " + graph + " >" + picture + " 2>" + complaints + " && test ! -s " + complaints;
    EXPECT_EQ(0, std::system(draw.c_str()));
    EXPECT_EQ(0, std::system(("rm " + graph + " " + picture + " " + complaints).c_str()));
}

// Numbers of nodes depend on nothing but the pattern, and drawing recurses over nothing.
TEST(Graph, IsTheSameEachTimeEvenForDeepGroups) {
    EXPECT_EQ(RE_Tree(u"((a)|b)*?c", true).graph(), RE_Tree(u"((a)|b)*?c", true).graph());
    const std::string deep = RE_Tree(std::u16string(50000, u'(') + u"a" + std::u16string(50000, u')'), false).graph();
    EXPECT_EQ(50000, std::ranges::count(deep, '}') - 1);
}

// A graph that leads into another tree's shows where, and does not draw that tree.
TEST(Graph, NamesTheContinuationOfASubPattern) {
    RE_Context context;
    const RE_Tree outer(u"a", false);
    const RE_Tree inner(u"b", 1, 0x12, &context, const_cast<RE_Node*>(outer.getRoot()), nullptr, false);
    EXPECT_NE(std::string::npos, inner.graph().find("continuation"));
}

/// Adds up what happens, per node, in the terms of a profile.
class Counter : public RE_Observer {
public:
    void observe(const RE_Trace_Event& event, const RE_Search_Info& search) override {
        RE_Node_Counts& own = counts[event.node != nullptr ? event.node->nodeId : 0];
        const bool isStep = event.kind == RE_Trace_Kind::step;
        own.visits += isStep ? 1u : 0u;
        own.successes += isStep && event.succeeded ? 1u : 0u;
        own.failures += isStep && !event.succeeded ? 1u : 0u;
        own.pushes += event.kind == RE_Trace_Kind::push ? 1u : 0u;
        own.pops += event.kind == RE_Trace_Kind::pop ? 1u : 0u;
        all.pops += event.kind == RE_Trace_Kind::pop ? 1u : 0u;
        starts += event.kind == RE_Trace_Kind::start ? 1u : 0u;
        if (event.kind == RE_Trace_Kind::finish) {
            steps = search.steps;
            last = event;
            tokens = search.tokens->count;
        }
    }

    std::map<std::uint64_t, RE_Node_Counts> counts;
    RE_Node_Counts all;
    std::uint64_t starts = 0;
    std::uint64_t steps = 0;
    std::size_t tokens = 0;
    RE_Trace_Event last{};
};

/// Empty when trace, profile and plain search of this pattern agree on this subject.
std::string disagreement(const std::u16string& pattern, const EngineConfig& config, const std::u16string& subject,
                         bool stepsAreKnown) {
    EngineConfig profiling = config;
    profiling.profile = true;
    const Engine plain(pattern, kPlain, config);
    const Engine profiled(pattern, kPlain, profiling);
    Counter counter;
    const std::unique_ptr<RE_Results> traced(profiled.tree().trace(subject.data(), subject.size(), 0, counter));
    const Outcome outcome = plain.search(subject);
    if ((traced != nullptr) != outcome.matched) {
        return "another result";
    }
    if (traced != nullptr && (counter.last.from != outcome.start || counter.last.to != outcome.start + outcome.length ||
                              counter.tokens != outcome.tokens.size())) {
        return "the last event is another match";
    }
    for (const RE_Node_Profile& node : profiled.tree().profile().nodes) {
        RE_Node_Counts expected = counter.counts[node.nodeId];
        expected.refusals = node.counts.refusals;
        if (expected != node.counts) {
            return "other counts at n" + std::to_string(node.nodeId) + " " + node.label;
        }
    }
    // The engine counts choices that are resumed, and attempts.
    const bool counted = counter.starts == 0 || counter.steps == counter.all.pops + counter.starts;
    return stepsAreKnown && !counted ? "other steps than the engine's own" : "";
}

// Half of the patterns are without lookarounds: of those the engine's own count of steps follows from the trace.
TEST(Trace, AgreesWithTheProfileAndTheSearch) {
    PatternSource source(5);
    for (int round = 0; round < 3000; ++round) {
        const bool looks = round % 2 == 0;  // a look-behind counts steps without choices
        const std::u16string pattern = source.pattern(kDynamics | (looks ? 0U : kLookarounds | kConditions));
        const std::u16string subject = source.subject(9);
        const EngineConfig& config = allConfigs()[source.below(allConfigs().size())];
        ASSERT_EQ("", disagreement(pattern, config, subject, !looks))
            << printable(pattern) << " on " << printable(subject) << " " << config;
    }
}

// A search in which every kind of event happens at least once.
TEST(Trace, ReportsSeeksAndRefusals) {
    struct Kinds : RE_Observer {
        void observe(const RE_Trace_Event& event, const RE_Search_Info&) override {
            ++seen[static_cast<std::size_t>(event.kind)];
        }
        std::size_t seen[8] = {};
    } kinds;
    const std::u16string subject(2000, u'a');
    delete RE_Tree(u"(?>a|b)(?:a|aa)*c", false).trace(subject.data(), subject.size(), 0, kinds);
    EXPECT_EQ(0, std::ranges::count(kinds.seen, 0u));
}

// Each search counts on a sheet of its own: 200 searches of four threads are 200 times one search, exactly.
TEST(ThreadsOfOneProfile, AddUp) {
    const Engine engine(u"(a|ab)*c", kPlain, {true, true, true, 1024, true});
    const std::u16string subject = u"abaabababx abac";
    engine.search(subject);
    const RE_Node_Counts once = engine.tree().profile().total();
    EXPECT_GT(once.visits, 20u);
    EXPECT_EQ(once.visits, once.successes + once.failures);
    engine.tree().clearProfile();
    std::vector<std::thread> threads;
    for (int own = 0; own < 4; ++own) {
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                engine.search(subject);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(200u, engine.tree().profile().searches);
    EXPECT_EQ(200 * once.visits, engine.tree().profile().total().visits);
    EXPECT_TRUE(Engine(u"a").tree().profile().nodes.empty());
}

// What is offered as a correction removes the warning, and raises no other.
TEST(Warnings, AreNamedAndCorrected) {
    std::vector<std::string> names;
    for (unsigned number = 0; number <= 22; ++number) {
        names.emplace_back(describe(static_cast<RE_Warning>(number)).name);
    }
    std::ranges::sort(names);
    EXPECT_EQ(names.end(), std::ranges::adjacent_find(names));
    size_t corrected = 0;
    std::vector<std::u16string> patterns = tablePatterns();
    patterns.insert(patterns.end(), {u"(?<day>a)\\k<dya>", u"(?<n>b)(?(m)a|b)", u"(?@x)+a", u"x{,4}", u"(?i-s-m)a"});
    for (const std::u16string& pattern : patterns) {
        const Engine engine(pattern);
        for (const Warning& warning : engine.warnings()) {
            const auto number = static_cast<RE_Warning>(warning.number);
            const RE_Warning_Span span = locateWarning(number, pattern, warning.position);
            ASSERT_LE(span.start + span.length, pattern.size()) << printable(pattern);
            EXPECT_LE(span.start, warning.position + 3);
            if (span.correction) {
                std::u16string better = pattern;
                better.replace(span.start, span.length, *span.correction);
                EXPECT_LT(Engine(better).warnings().size(), engine.warnings().size())
                    << printable(pattern) << " -> " << printable(better);
                ++corrected;
            }
        }
    }
    EXPECT_GT(corrected, 25u);
}

}  // namespace
}  // namespace corvane_tests
