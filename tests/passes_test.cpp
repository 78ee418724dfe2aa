// What the passes make of a graph: the labels of its nodes, in the order in which the graph leads to them.
//
// Equal answers are tested elsewhere. Here is whether a rewrite happens at all: one that silently stopped happening
// would cost time and fail no other test. A change to a pass is expected to change rows of this table.
#include "tests/support/case_file.h"
#include "tests/support/engine_run.h"
#include "tests/support/pattern_random.h"
#include "tests/support/text.h"

#include "regexp/nodes/collection.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/parser/parser_context.h"
#include "regexp/analysis/bottlenecks.h"
#include "regexp/regexp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

namespace corvane_tests {
namespace {

auto nodesOf(const RE_Tree& tree) {
    return RE_Collection::reachable(const_cast<RE_Node*>(tree.getRoot()));
}

template <class Nodes>
std::string labels(const Nodes& nodes) {
    std::string all;
    for (const RE_Node* node : nodes) all += (all.empty() ? "" : "; ") + node->label();
    return all;
}

/// The labels of the graph that this pattern has under these flags and passes, separated by semicolons.
struct PassCase {
    const char16_t* pattern;
    RE_Flags flags;
    EngineConfig config;
    const char* labels;
};

// By the passes that run: none, null nodes alone, linear sub-patterns too, all.
constexpr EngineConfig kNothing{false, false, false, 1024, false};
constexpr EngineConfig kNulls{false, false, true, 1024, false};
constexpr EngineConfig kLinear{true, false, true, 1024, false};
constexpr EngineConfig kAll{true, true, true, 1024, false};

const PassCase kPassCases[] = {
    {u"a()b", 0x12, kNothing, "Null; Match 'a'; Token start #1; Token end #1; Match 'b'; Null; End"},
    {u"a(?:)b", 0x12, kNulls, "Match 'a'; Match 'b'; End"},
    {u"abc", 0x12, kLinear, "Match 'abc'; End"},
    {u"abc", 0x13, kLinear, "Match 'abc' ignoring case; End"},
    {u"a1b", 0x13, kLinear, "Match 'a1b' ignoring case; End"},
    {u"ab(?i:cd)", 0x12, kLinear, "Match 'ab'; Match 'cd' ignoring case; End"},
    {u"(?:a|b)c", 0x12, kLinear, "Match 'a'|'b'; Match 'c'; End"},
    {u"(?:a|.)b", 0x12, kLinear, "Match 'a'|. (dotall); Match 'b'; End"},
    {u"[a-cx]", 0x12, kNulls, "Match [a-cx]; End"},
    {u"[a-c]", 0x12, kNulls, "Match [a-c]; End"},
    {u"[z-a]", 0x13, kNulls, "Match [a-z] ignoring case; End"},
    {u"[0-z]", 0x13, kNulls, "Match [0-z] ignoring case (ambiguous); End"},
    {u"\\w.", 0x10, kNulls, "Match \\w; Match . (dotexceptnewline); End"},
    {u".*b", 0x12, kNulls, "Split; Match . (dotall); Match 'b'; End"},
    {u".*b", 0x12, kLinear, "Dispatch to 2 ways; Match . (dotall); Match 'b'; End"},
    {u".*b", 0x12, kAll, "Seek within text of 1 units; Consume; Match 'b'; Match . (dotall); End"},
    {u"(?:a+)*b", 0x12, kAll, "Seek within text of 1 units; Consume Possessive; Match 'b'; Match 'a'; End"},
    {u"a{2,70}+b", 0x12, kAll, "Seek prefixes by 3 units; Consume Possessive{2,70}; Match 'b'; Match 'a'; End"},
    {u"a{3,}?b", 0x12, kAll, "Seek prefixes by 3 units; Consume Possessive{3,}; Match 'b'; Match 'a'; End"},
    {u"foo|foobar|foo|bar", 0x12, kLinear, "Match 'foo'|'foobar'|'bar'; End"},
    {u"(?:a|bc|[de])f", 0x12, kLinear, "Match 'a'|'bc'|'d'|'e'; Match 'f'; End"},
    {u"ab|--|1", 0x13, kLinear, "Match 'ab'|'--'|'1' ignoring case; End"},
    {u"ab|(?i:ab)|cd|-", 0x12, kLinear,
     "Dispatch to 3 ways; Match 'ab'; Match 'ab' ignoring case; Match 'cd'|'-'; End"},
    {u"(?:if|in|\\d+|x+y)*=", 0x12, kAll,
     "Seek within text of 1 units; Dispatch to 4 ways; Match 'if'|'in'; Consume{1,}; Consume Possessive{1,}; "
     "Match '='; Match \\d; Match 'y'; Match 'x'; End"},
    {u"(?:(?:ab|cd)e|f)?(?:ab)*?", 0x12, kAll,
     "Seek one of 3 units; Dispatch to 3 ways; Match 'ab'|'cd'; Match 'f'; Dispatch to 2 ways; Match 'e'; End; "
     "Match 'ab'"},
    {u"(x)(?:ab|cd|\\1|\\1y|\\1z)", 0x12, kLinear,
     "Token start #1; Match 'x'; Token end #1; Split; Match 'ab'|'cd'; Split; End; Match Token 1; Split; "
     "Match Token 1; Match Token 1; Match 'y'; Match 'z'"},
    {u"^ab", 0x12, kAll, "Match start of string; Match 'ab'; End"},
    {u"(ab)c", 0x12, kAll, "Seek text of 2 units; Token start #1; Match 'ab'; Token end #1; Match 'c'; End"},
    {u"(?:ab){400}", 0x12, kNulls, "Start Counter; Fixed Counter{400}; Counter popper; Match 'a'; End; Match 'b'"},
    {u"(?:ab){0,400}", 0x12, kNulls, "Start Counter; Limit Counter{400}; Counter popper; Match 'a'; End; Match 'b'"},
    {u"(?:ab){0,400}?", 0x12, kNulls,
     "Start Counter; Lazy Counter{400}; Counter popper; End; Match 'a'; Lazy decrementer; Match 'b'"},
};

TEST(Passes, MakeTheGraphsOfTheTable) {
    for (const PassCase& c : kPassCases) {
        const Engine engine(c.pattern, c.flags, c.config);
        EXPECT_EQ(c.labels, labels(nodesOf(engine.tree())));
    }
}

/// Whether the run of 1s in this pattern backtracks, instead of being possessive.
bool givesBackOnes(const std::u16string& pattern) {
    const RE_Tree tree(pattern, false);
    return std::ranges::any_of(nodesOf(tree), [](const RE_Node* node) {
        const auto* const run = nodeAs<RE_Consume>(node);
        return run != nullptr && run->item->label() == "Match '1'" && !run->possessive;
    });
}

// At a shorter end of the run a condition may lead past its branches, and the pattern may be over there.
TEST(Passes, HaveARunGiveBackWhatAConditionMayLeadPast) {
    for (const char16_t* condition : {u"(1)", u"(n)", u"(?=a)", u"(?=ab)", u"(?=\\<a)", u"(?=a+b)", u"(?=(a))",
                                      u"(?!a+b)", u"(?<=a)", u"(?<=a+)", u"(?<!a)", u"(?<!(a)b)"}) {
        const std::u16string group = u"(?<n>a)?1*(?" + std::u16string(condition);
        EXPECT_TRUE(givesBackOnes(group + u"b)")) << printable(condition);
        EXPECT_TRUE(givesBackOnes(group + u"b|)")) << printable(condition);
        EXPECT_TRUE(givesBackOnes(group + u"b|[1c])")) << printable(condition);
        EXPECT_FALSE(givesBackOnes(group + u"b|c)")) << printable(condition);
        EXPECT_FALSE(givesBackOnes(group + u"b)c")) << printable(condition);
    }
    EXPECT_FALSE(givesBackOnes(u"1*(?(?!a)b)")) << "the way past the branch needs an a";
}

/// A graph in the order in which its links lead to the nodes: equal for graphs of the same nodes and links, however the
/// nodes are numbered. The lines of the text are `n1 [label="..."];` and `n1 -> n2 [...];`.
std::string inOrderOfLinks(const std::string& text) {
    std::map<std::string, std::vector<std::string>> lines;  // of each node, what follows its number
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        std::istringstream words(line);
        std::string node;
        std::string rest;
        words >> node >> std::ws;
        std::getline(words, rest);
        lines[node].push_back(rest);
    }
    std::vector<std::string> met{"start"};
    std::string out;
    for (size_t at = 0; at < met.size(); ++at) {
        for (const std::string& line : std::vector<std::string>(lines[met[at]])) {
            if (!line.starts_with("-> ")) {
                out += line + '\n';
                continue;
            }
            const size_t end = line.find_first_of(" ;", 3);
            const std::string target = line.substr(3, end - 3);
            const auto known = std::ranges::find(met, target);
            out += std::to_string(known - met.begin()) + line.substr(end) + '\n';
            if (known == met.end()) met.push_back(target);
        }
    }
    return out;
}

/// All patterns of the tables under their flags, and drawn ones.
std::vector<DrawnPattern> manyPatterns() {
    std::set<std::pair<std::u16string, RE_Flags>> patterns;
    for (const char* table : {"tokens", "repetition", "closed_bodies", "conditions", "anchors", "units", "searching",
                              "malformed", "differences"}) {
        for (const MatchCase& match : readCaseFile(std::string(CORVANE_TEST_DATA_DIR "/") + table + ".txt")) {
            patterns.emplace(match.pattern, match.flags);
        }
    }
    PatternSource source(5);
    for (size_t count = 0; count < 1500; ++count) {
        const DrawnPattern drawn = count % 2 == 0 ? source.draw() : source.drawDense();
        patterns.emplace(drawn.text, drawn.flags);
    }
    for (const char16_t* pattern : {u"ab\\0cd(?:ef)g+hi(?i:-j)kl", u"(?:abc){3}d(?:e|fg)hi", u"a(?i:b-)--c",
                                    u"x(?=ab)cd", u"(?:a+)+b|(?:(?:[ab]+)+)*c", u"(?:b|x*?)b|(?:|\\d{0,5}?)y",
                                    u"a?(?:b|.|c)d", u"x{2,}?y{0,3}z{4,40}+(?:a+?){2,}(?<=b{3,}?)[cd]?+"}) {
        patterns.emplace(pattern, kEmptyToo);
    }
    std::vector<DrawnPattern> all;
    for (const auto& [text, flags] : patterns) all.push_back({text, flags});
    return all;
}

// The parser makes literals strings, and loops over one unit runs, from the beginning, unless the stages are watched.
// Then passes do the same later, and both have to make one graph. Only the numbers may differ.
TEST(Passes, MakeTheSameGraphWhetherOrNotTheStagesAreWatched) {
    const std::vector<DrawnPattern> patterns = manyPatterns();
    ASSERT_GT(patterns.size(), 2000U);
    for (const EngineConfig& config : {kAll, kLinear, EngineConfig{false, true, true, 0, false}}) {
        Corvane::regexp::CompileOptions options;
        RE_Context context(configured(options, config));
        for (const auto& [pattern, flags] : patterns) {
            const RE_Tree tree(pattern.data(), pattern.size(), flags, &context);
            const std::string watched =
                RE_Tree::graphAfter(RE_Stage::dot_star, pattern.data(), pattern.size(), flags, &context);
            ASSERT_EQ(inOrderOfLinks(watched), inOrderOfLinks(tree.graph()))
                << printable(pattern) << " under " << config;
        }
    }
}

/// The nodes that every match passes, as `keepBottlenecks` computes them.
template <class Nodes>
std::vector<RE_Node*> bottlenecks(const Nodes& nodes, RE_Node* root) {
    RE_Context host;
    RE_ParserContext context(&host, nullptr, 0);
    RE_Scratch_List<RE_Node*> kept(nodes.begin(), nodes.end(), &context.scratch);
    keepBottlenecks(context, root, kept);
    return {kept.begin(), kept.end()};
}

// A row is a pattern and its bottlenecks: the nodes without which no way leads to the end.
TEST(Passes, KnowWhatEveryMatchPasses) {
    const struct {
        const char16_t* pattern;
        const char* labels;
    } cases[] = {
        {u"ab(?:cd|e\\d)fg", "Match 'ab'; Dispatch to 2 ways; Match 'fg'; End"},
        {u"a(?:b(?:cd)?)*e", "Match 'a'; Dispatch to 2 ways; Match 'e'; End"},
        {u"a(?:bc)+d", "Match 'a'; Match 'bc'; Dispatch to 2 ways; Match 'd'; End"},
        {u"a(?=bc)d", "Match 'a'; Lookaround Ahead; Match 'd'; End"},
        {u"a(?>bc|d)e", "Match 'a'; Atomic group; Match 'e'; End"},
        {u"(a)b\\1c", "Token start #1; Match 'a'; Token end #1; Match 'b'; Match Token 1"},
        {u"x(?(?=a)bc|de)f", "Match 'x'; Lookaround Ahead; Match 'f'; End"},
        {u"x(?(?!a)bc)f", "Match 'x'; Lookaround Ahead; Match 'f'; End"},
        {u"x(?(?<=a)|bc)f", "Match 'x'; Lookaround Behind; Match 'f'; End"},
        {u"(a)?(?(1)bc)f", "Dispatch to 2 ways; Assert Token 1; Match 'f'; End"},
    };
    for (const auto& c : cases) {
        const Engine engine(c.pattern, 0x12, kLinear);
        const auto nodes = nodesOf(engine.tree());
        EXPECT_EQ(c.labels, labels(bottlenecks(nodes, nodes.front()))) << printable(c.pattern);
    }
    // From within a body no way leads to an end of the pattern.
    const Engine engine(u"(?>a|bc)d", 0x12, kLinear);
    const auto nodes = nodesOf(engine.tree());
    EXPECT_EQ(labels(nodes), labels(bottlenecks(nodes, nodeAs<RE_Atomic>(nodes.front())->body)));
}

// The least and the greatest number of units that the whole pattern can consume, which lengths of nodes add up to.
TEST(Nodes, MeasureWhatFollowsThem) {
    constexpr std::uint64_t kUnbounded = RE_Node::unboundedLength;
    const struct {
        const char16_t* pattern;
        std::uint64_t least, greatest;
    } cases[] = {
        {u"ab(?:c|de)f", 4, 5},         {u"a{2,5}b", 3, 6},
        {u"xa+?b?", 2, kUnbounded},     {u"(?>ab?)c", 2, 3},
        {u"(?<=abc)(?!d)e", 1, 1},      {u"(a)x\\1", 2, kUnbounded},
        {u"(?:ab|c)*d", 1, kUnbounded}, {u"(?:abc|de|fghi)[xy]", 3, 5},
        {u"(?(?=a)abc)d", 1, 4},        {u"(?(?!a)bc|d)e", 2, 3},
        {u"(?(?<=a)|bc)d", 1, 3},       {u"(a)?(?(1)bc)d", 1, 4},
    };
    for (const auto& c : cases) {
        const RE_Tree tree(c.pattern, false);
        RE_Node* const root = nodesOf(tree).front();
        root->computeLengths();
        EXPECT_EQ(c.least, root->minLength) << printable(c.pattern);
        EXPECT_EQ(c.greatest, root->maxLength) << printable(c.pattern);
        EXPECT_EQ(c.greatest != kUnbounded, root->maxBounded) << printable(c.pattern);
    }
}

/// The definition of a bottleneck, by a walk that leaves out one node: slow, and without the algorithm's cleverness.
bool endsWithout(RE_Node* root, const RE_Node* avoided) {
    std::set<RE_Node*> seen;
    std::vector<RE_Node*> pending{root};
    while (!pending.empty()) {
        RE_Node* const node = pending.back();
        pending.pop_back();
        if (node == nullptr || node == avoided || !seen.insert(node).second) continue;
        if (!forEachStep(*node, [&](RE_Node* target) { pending.push_back(target); })) return true;
    }
    return false;
}

// Against the definition: a node is a bottleneck if the end is out of reach without it.
TEST(Passes, KnowWhatEveryMatchPassesInRandomPatterns) {
    PatternSource source(7);
    for (int count = 0; count < 300; ++count) {
        const std::u16string pattern = source.pattern();
        const RE_Tree tree(pattern, false);
        const auto nodes = nodesOf(tree);
        std::vector<RE_Node*> expected;
        std::ranges::copy_if(nodes, std::back_inserter(expected),
                             [&](const RE_Node* node) { return !endsWithout(nodes.front(), node); });
        ASSERT_EQ(labels(expected), labels(bottlenecks(nodes, nodes.front()))) << printable(pattern);
    }
}

// Copies multiply where loops nest; counters have to take over before that becomes large.
TEST(Passes, KeepNestedCountsSmall) {
    EXPECT_LT(RE_Tree(u"((a{100}){100}){100}", false).getNodeCount(), 10000u);
    EXPECT_LT(RE_Tree(u"((((((((a{1,2}){1,2}){1,2}){1,2}){1,2}){1,2}){1,2}){1,2}){1,2}", false).getNodeCount(), 10000u);
}

}  // namespace
}  // namespace corvane_tests
