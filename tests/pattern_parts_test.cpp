// What part of a pattern each node was made for.
//
// Two oracles. A table says by hand which part each node of a graph has. And of patterns that raise no warning, whatever
// they are, every part is such a pattern by itself: one that begins or ends within an escape, a set or a group is not.
#include "tests/support/case_file.h"
#include "tests/support/engine_run.h"
#include "tests/support/pattern_random.h"
#include "tests/support/text.h"

#include "regexp/graph/graph_facts.h"
#include "regexp/graph/node.h"
#include "regexp/inspect/outline.h"
#include "regexp/inspect/pattern_parts.h"

#include <gtest/gtest.h>

namespace corvane_tests {
namespace {

struct Compiled {
    Compiled(const std::u16string& text, RE_Flags flags, const EngineConfig& config)
        : pattern(text),
          context(configured(options, config)),
          tree(text.data(), text.size(), flags, &context),
          parts(partsOfPattern(text.data(), text.size(), flags, &context)) {}

    std::string partOf(const RE_Node* node) const {
        const std::optional<RE_Part_Of_Pattern> part = parts.of(node->nodeId);
        return part ? narrow(pattern.substr(part->start, part->length)) : "-";
    }
    static std::string narrow(const std::u16string& text) { return std::string(text.begin(), text.end()); }

    std::u16string pattern;
    Corvane::regexp::CompileOptions options;
    RecordingContext context;
    RE_Tree tree;
    RE_Pattern_Parts parts;
};

TEST(PatternParts, AreWhatTheNodesWereMadeFor) {
    struct Case {
        const char16_t* pattern;
        EngineConfig config;
        const char* parts;
    };
    // clang-format off
    const Case cases[] = {
        {u"ab(?:cd)", {}, "Match 'abcd' ab(?:cd); End -; "},
        {u"a\\x41b{2}", kPlainGraph, "Null -; Match 'a' a\\x41; Match 'A' a\\x41; Match 'b' b; "},
        {u"x(\\d+)y", {}, "Token start #1 (\\d+); Match \\d \\d; Token end #1 (\\d+); Consume Possessive{1,} \\d+; Match 'x' x; Match 'y' y; "},
        {u"(?>a|[b-d]*?)$", {}, "Atomic group (?>a|[b-d]*?); Match 'a' a; Match [b-d] [b-d]; "},
        {u"(?:foo|bar)+", {}, "Match 'foo'|'bar' (?:foo|bar); "},
        {u"(?:a|\\d|[x])q", {}, "Match 'a'|\\d|'x' a|\\d|[x]; "},
        {u"(?i)a {2,3}b", {}, "Consume Possessive{2,3}  {2,3}; Match ' '  ; "},
        {u"(?x) a + # all\n b {2}", {}, "Consume Possessive{1,} a +; "},
        {u"(?(?=a)a|b)", {}, "Lookaround Ahead (?=a); "},
        {u"(a)?(?(1)b|c)\\1", {}, "Assert Token 1 (?(1)b|c); Match Token 1 \\1; Dispatch to 2 ways (a)?; "},
        {u"a*+b", {}, "Consume Possessive a*+; Match 'a' a; "},
        {u"\\x{1F600}+", {}, "Dispatch to 2 ways \\x{1F600}+; "},
    };
    // clang-format on
    for (const Case& one : cases) {
        const Compiled compiled(one.pattern, kPlain, one.config);
        std::string known;
        for (const RE_Node* node : compiled.tree.getFacts().nodes) {
            known += node->label() + " " + compiled.partOf(node) + "; ";
        }
        for (std::string expected = one.parts; !expected.empty();) {
            const size_t end = expected.find("; ") + 2;
            EXPECT_NE(std::string::npos, known.find(expected.substr(0, end)))
                << printable(one.pattern) << ": " << expected.substr(0, end) << " not in " << known;
            expected.erase(0, end);
        }
    }
}

bool isPattern(const std::u16string& text) {
    // What refers to other parts is none by itself.
    if (text.find(u"\\k") != std::u16string::npos || text.find(u"(?(") != std::u16string::npos) return true;
    return Engine(text).warnings().empty();
}

TEST(PatternParts, ArePatternsThemselves) {
    std::vector<std::u16string> patterns;
    for (const char* table :
         {"tokens", "repetition", "closed_bodies", "anchors", "units", "searching", "differences"}) {
        for (const MatchCase& match : readCaseFile(std::string(CORVANE_TEST_DATA_DIR "/") + table + ".txt")) {
            patterns.push_back(match.pattern);
        }
    }
    size_t count = 0;
    for (const std::u16string& pattern : patterns) {
        if (!Engine(pattern).warnings().empty() || pattern.find(u"(?x") != std::u16string::npos) continue;
        for (const EngineConfig& config : {EngineConfig{}, kPlainGraph}) {
            const Compiled compiled(pattern, kPlain, config);
            for (const RE_Node* node : compiled.tree.getFacts().nodes) {
                const std::optional<RE_Part_Of_Pattern> part = compiled.parts.of(node->nodeId);
                if (!part) continue;
                ASSERT_LE(part->start + part->length, pattern.size());
                ASSERT_NE(part->length, 0u);
                const std::u16string text = pattern.substr(part->start, part->length);
                EXPECT_TRUE(isPattern(text))
                    << node->label() << " of " << printable(pattern) << ": " << printable(text);
                ++count;
            }
        }
        Corvane::regexp::CompileOptions options;
        RecordingContext context(options);
        for (const RE_Outline::Line& line : outlinePattern(pattern.data(), pattern.size(), kPlain, &context).lines) {
            ASSERT_LE(line.start + line.length, pattern.size());
            const std::u16string text = pattern.substr(line.start, line.length);
            EXPECT_TRUE(isPattern(text)) << line.words << " in " << printable(pattern) << ": " << printable(text);
        }
    }
    EXPECT_GT(count, 1000u);
}

}  // namespace
}  // namespace corvane_tests
