// Patterns that continue in another tree's graph match what the two say one after the other.
//
// The oracle is one tree of both patterns, each in a group of its own. What two graphs have twice (rows of the memo,
// registers, counts) must not collide although each tree numbers them from the beginning.
#include "tests/support/differential.h"
#include "tests/support/pattern_random.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/graph/node.h"
#include "regexp/options/compile_options.h"

#include <gtest/gtest.h>

namespace corvane_tests {
namespace {

/// A chain of patterns, each continued in the root of the next.
class Chain {
public:
    Chain(const std::vector<std::u16string>& patterns, RE_Flags flags, const EngineConfig& config)
        : m_context(configured(m_options, config)) {
        RE_Node* entry = nullptr;
        for (auto pattern = patterns.rbegin(); pattern != patterns.rend(); ++pattern) {
            m_trees.push_back(
                std::make_unique<RE_Tree>(pattern->data(), pattern->size(), flags, &m_context, entry, nullptr, true));
            entry = const_cast<RE_Node*>(m_trees.back()->getRoot());
        }
    }
    const RE_Tree& tree() const { return *m_trees.back(); }

    /// All matches, by one search each.
    std::vector<Outcome> all(const std::u16string& subject) const {
        std::vector<Outcome> found;
        for (size_t offset = 0; offset <= subject.size();) {
            const std::unique_ptr<RE_Results> match(tree().match(subject, offset));
            if (match == nullptr) {
                break;
            }
            found.push_back(toOutcome(match.get()));
            offset = match->nextIndex();
        }
        return found;
    }

private:
    Corvane::regexp::CompileOptions m_options;
    RecordingContext m_context;
    std::vector<std::unique_ptr<RE_Tree>> m_trees;
};

// One line for all matches, so that a failure shows how far the two agree.
std::string describeAll(const std::vector<Outcome>& outcomes) {
    std::string text;
    for (const Outcome& outcome : outcomes) {
        text += describe(outcome) + " ";
    }
    return text;
}

std::u16string joined(const std::vector<std::u16string>& patterns) {
    std::u16string text;
    for (const std::u16string& pattern : patterns) {
        text += u"(?:" + pattern + u")";
    }
    return text;
}

struct Case {
    std::vector<std::u16string> patterns;
    std::u16string subject;
};

/// Rows, registers and counts of both graphs are in use at once.
const Case cases[] = {
    {{u"q", u"(?:(?:(?:(?:(?:(?:(?:(?:(?:(?:(?:(?:a*|b)*|c*)*|d*)*|e*)*|f*)*|a)*|b)*|c)*|d)*|e)*|f)*|g)*z"},
     u"xqabcabdz qz"},
    {{u"(?:a*|b)*", u"(?:b*|c)*d"}, u"abcbd"},
    {{u"(?:|a){3}", u"(?:|a){2,4}b"}, u"aaaaab"},
    {{u"a*", u"a*b"}, u"xaaab"},
    {{u"a*?", u"a*a"}, u"aaaa"},
    {{u"(?:ab){1,2}", u"(?:ab){2}c"}, u"abababc"},
    {{u"(?:a|ab)(?:c|bcd)", u"d*$"}, u"abcd abcdd"},
    {{u"(?>a+)", u"(?=b)(?:b|c)*"}, u"aabcb"},
    {{u"(a)", u"b"}, u"ab"},
    {{u"a", u"(b)\\1"}, u"abb"},
    {{u"(a)+(b)?", u"c"}, u"aabc"},
    {{u"a", u"(?<n>b*)(?(n)c|d)"}, u"abbc ad"},
    {{u"a|", u"(?<!a)b|c"}, u"ab ac"},
    {{u"a*", u"b*", u"(?:c|bc)*$"}, u"aabbcbc"},
    {{u"", u"", u"a"}, u"ba"},
};

TEST(Continuation, InAnotherGraphMatchesTheTwoInARow) {
    for (const Case& each : cases) {
        for (const EngineConfig& config :
             {EngineConfig{}, EngineConfig{false, false, false, 0, false}, EngineConfig{.profile = true}}) {
            const Chain chain(each.patterns, kEmptyToo, config), whole({joined(each.patterns)}, kEmptyToo, config);
            EXPECT_EQ(describeAll(whole.all(each.subject)), describeAll(chain.all(each.subject)))
                << printable(joined(each.patterns)) << " " << config;
        }
    }
}

// With the memo from the first choice on, as its rows are what two graphs share most easily.
TEST(Continuation, OfRandomPatternsMatchesThemInARow) {
    const Delays delays(0, 0, 0);
    const std::uint64_t seed = environmentNumber("CORVANE_TEST_SEED", 1415);
    PatternSource source(seed);
    constexpr unsigned later = kCaptures | kReferences | kDynamics;  // tokens of both would share slots
    std::uint64_t steps = 0;
    const unsigned long rounds = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 500 : 6000);
    for (unsigned long round = rounds; round > 0; --round) {
        std::vector<std::u16string> patterns{source.pattern(), source.pattern(later)};
        if (round % 3 == 0) {
            patterns.push_back(source.pattern(later));
        }
        const RE_Flags flags = source.below(2) == 0 ? kPlain : kEmptyToo;
        const EngineConfig& config = allConfigs()[source.below(allConfigs().size())];
        const Chain chain(patterns, flags, config), whole({joined(patterns)}, flags, config);
        const std::u16string subject = source.subject(9);
        const std::vector<Outcome> expected = whole.all(subject);
        steps += expected.size();
        ASSERT_EQ(describeAll(expected), describeAll(chain.all(subject)))
            << printable(joined(patterns)) << " on " << printable(subject) << " " << config << " seed " << seed;
    }
    EXPECT_GT(steps, rounds / 4);
}

// A node within a body, a counted loop or a group is entered as if from outside: nothing may be read out of bounds.
TEST(Continuation, AtAnyNodeOfAGraphEnds) {
    const Engine outer(u"(?:(a|b)(?=(?:a|b)*c){2,3}(?<=b*)(?>a*){2}|\\1(?<n>c)?){3,}(?(n)x|y)", kEmptyToo,
                       {true, true, true, 0, false});
    for (const RE_Node* node : outer.tree().getFacts().nodes) {
        RecordingContext context(Corvane::regexp::CompileOptions::readGlobalCompileOptions());
        const RE_Tree inner(u"(?:(q)*|a*)*", 12, kEmptyToo, &context, const_cast<RE_Node*>(node), nullptr, true);
        RE_Search_Report report;
        const std::u16string subject = u"qqabbacxabcyaab";
        delete inner.match(subject.data(), subject.size(), 0, {.steps = 100000}, report);
        EXPECT_NE(RE_Search_Outcome::memoryFull, report.outcome) << node->label();
    }
}

// Each graph numbers its tokens from 0; the store has room for the larger number.
TEST(Continuation, HasTheTokensAndNamesOfBothGraphs) {
    const RE_Tree outer(u"(?<x>b)(?<y>c)", false);
    RE_Context context;
    const RE_Tree inner(u"(?<k>a)", 7, kPlain, &context, const_cast<RE_Node*>(outer.getRoot()), nullptr, true);
    EXPECT_EQ(2U, inner.getTokenCount());
    const std::unique_ptr<RE_Results> match(inner.match(u"abc", 0));
    ASSERT_NE(nullptr, match);
    // The slot that both share was written last by x.
    EXPECT_EQ("[0,3] t0=(1,1)x t1=(2,1)y", describe(toOutcome(match.get())));
}

}  // namespace
}  // namespace corvane_tests
