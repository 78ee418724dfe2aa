// The compiled pattern as hosts use it: constructors, names, ownership, and a graph that searches leave alone.
//
// Everything here is public interface, and expected values are written out. Lost memory shows as live blocks of the
// allocation counter, writes to the graph as changed bytes of its nodes.
#include "host/allocation.h"
#include "host/allocation_counter.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/graph/node.h"
#include "regexp/regexp.h"
#include "regexp/state/search_info.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <vector>

namespace corvane_tests {
namespace {

using Results = std::unique_ptr<RE_Results>;

// Six ways to compile and five to search are one tree and one search.
TEST(Tree, GivesTheSameAnswerThroughEveryConstructorAndMatch) {
    const RE_Builder_Space::RE_Builder builder(u"A(b+)C");
    RE_Context host;
    const RE_Tree trees[] = {RE_Tree(u"A(b+)C", true),
                             RE_Tree(u"A(b+)Cxx", 6, true),
                             RE_Tree(std::u16string(u"A(b+)C"), true),
                             RE_Tree(builder, true),
                             RE_Tree("A(b+)C", true),
                             RE_Tree(builder, RE_DEFAULT_FLAGS | RE_FLAG_IGNORE_CASE, &host)};
    for (const RE_Tree& tree : trees) {
        RE_Seek_Table table;
        const Results wide[] = {Results(tree.match(std::u16string(u"xxabbc"), 0)), Results(tree.match(u"xxabbc", 6, 1)),
                                Results(tree.match(u"xxabbc", 6, 2, &table)), Results(tree.match("xxabbc")),
                                Results(tree.match("xxabbc", 2))};
        for (const Results& results : wide) {
            ASSERT_NE(nullptr, results);
            EXPECT_EQ(2u, results->matchStart);
            EXPECT_EQ(4u, results->matchLength);
            EXPECT_EQ(6u, results->nextIndex());
            ASSERT_NE(nullptr, results->tokens->get(size_t{0}));
            EXPECT_EQ(3u, results->tokens->get(size_t{0})->start);
            EXPECT_EQ(nullptr, results->tokens->get(1));
        }
        EXPECT_EQ(nullptr, wide[3]->subjectBegin);
    }
}

// An offset of the length is allowed, one more is not, and the greatest number must not wrap.
TEST(Tree, HasNoMatchWithoutASubjectOrPastItsEnd) {
    const RE_Tree tree(u"a", false);
    EXPECT_EQ(nullptr, tree.match(static_cast<const char16_t*>(nullptr), 0, 0));
    EXPECT_EQ(nullptr, tree.match(static_cast<const char*>(nullptr)));
    EXPECT_EQ(nullptr, tree.match(u"a", 1, 2));
    EXPECT_EQ(nullptr, tree.match(u"a", 1, static_cast<size_t>(-1)));
}

TEST(Tree, RunsOnceAtAPositionAndAcceptsTheEmptyMatchThere) {
    const RE_Tree tree(u"b*", false);
    RE_Search_Info info(u"abb", 3, static_cast<size_t>(tree.getTokenCount()), nullptr, false);
    size_t length = 9;
    info.resetForStart(info.subjectBegin);
    EXPECT_TRUE(tree.match_bool(info.subjectBegin, &length, &info));
    EXPECT_EQ(0u, length);
    EXPECT_TRUE(tree.match_bool(info.subjectBegin + 1, &length, &info));
    EXPECT_EQ(2u, length);
}

// The second run finds a memo that has begun; it holds failures of the first, which must not count.
TEST(Tree, AnswersAlikeHoweverOftenAStateIsUsed) {
    const RE_Tree tree(u"(?:(?:a|aa|b)*e|)(?:a|aa|b)*d", false);
    const std::u16string subject = std::u16string(2000, u'a') + u"d";
    RE_Search_Info info(subject.data(), subject.size(), static_cast<size_t>(tree.getTokenCount()), nullptr, false);
    const RE_Tree other(u"a|ab|b", false);
    for (int run = 0; run < 3; ++run) {
        size_t length = 0;
        info.resetForStart(info.subjectBegin);
        EXPECT_TRUE(tree.match_bool(info.subjectBegin, &length, &info)) << run;
        EXPECT_EQ(subject.size(), length);
        EXPECT_TRUE(other.match_bool(info.subjectBegin, &length, &info));
        EXPECT_FALSE(other.match_bool(info.subjectEnd, &length, &info));
    }
}

// Loops that are copied and names that are used twice are listed once.
TEST(Tree, ListsEachNameOnceInTokenOrder) {
    size_t count = 9;
    EXPECT_EQ(nullptr, RE_Tree(u"(a)(b)", false).treeNames(&count));
    EXPECT_EQ(0u, count);
    const RE_Tree tree(u"(?<z>a){3}(b)(?<a>c)(?<z>d)", false);
    const char16_t** const names = tree.treeNames(&count);
    ASSERT_EQ(2u, count);
    EXPECT_STREQ("za", (std::string{static_cast<char>(names[0][0]), static_cast<char>(names[1][0])}.c_str()));
    utFree(names);
}

// Copy assignment makes an alias that does not own the graph, move assignment hands it over. What is left of a tree
// without a graph answers every call, with nothing.
TEST(Tree, SharesItsGraphOnAssignmentAndGivesItUpWhenMoved) {
    RE_Tree tree(u"ab", false);
    // Applications copy trees into raw memory and let one of the two free the graph. The bytes of the alias are
    // overwritten first: assignment must not read what was there.
    alignas(RE_Tree) unsigned char place[sizeof(RE_Tree)];
    RE_Tree* const alias = new (place) RE_Tree(RE_Tree(u"", false));
    alias->~RE_Tree();
    std::memset(place, 0, sizeof place);
    *alias = tree;  // one graph now, freed by `tree` alone
    EXPECT_NE(nullptr, Results(alias->match(u"xab", 3, 0)));
    RE_Tree moved(std::move(tree));
    EXPECT_NE(nullptr, Results(moved.match(u"ab", 2, 0)));

    utAllocationCounter counter;
    RE_Tree named(u"(?<n>c)", false);
    const auto live = counter.live();
    named = RE_Tree(u"(?<n>c)", false);  // the old graph is freed
    EXPECT_EQ(live, counter.live());
    RE_Tree& itself = named;
    named = std::move(itself);
    EXPECT_NE(nullptr, Results(named.match(u"c", 1, 0)));
    moved = std::move(named);
    EXPECT_NE(nullptr, Results(moved.match(u"c", 1, 0)));
    // No context: nobody is warned, and nothing is evaluated.
    EXPECT_NE(nullptr, Results(RE_Tree(u"c|(", 3, RE_DEFAULT_FLAGS, nullptr).match(u"c", 1, 0)));
    EXPECT_NE("", RE_Tree::graphAfter(RE_Stage::parsed, u"c", 1, RE_DEFAULT_FLAGS, nullptr));
    // A tree without a graph matches nothing.
    size_t count = 1;
    RE_Search_Info info(u"c", 1, 1, nullptr, false);
    EXPECT_FALSE(named.match_bool(u"c", &count, &info));
    EXPECT_EQ(nullptr, named.match(u"c", 1, 0));
    EXPECT_EQ(nullptr, named.match_at(u"c", 0));
    EXPECT_EQ(1u, named.split(u"c").size());
    EXPECT_EQ(u"c", RE_Replace(u"d").replace(u"c", named, false, 0));
    EXPECT_EQ(nullptr, named.treeNames(&count));
    EXPECT_EQ("digraph regexp {\n}\n", named.graph());
}

// The bytes of every node that a graph leads to, as far as all node classes share them.
std::vector<unsigned char> bytesOf(const RE_Tree& tree) {
    std::vector<unsigned char> bytes;
    std::vector<const RE_Node*> pending{tree.getRoot()};
    std::vector<const RE_Node*> seen;
    struct Links : RE_Link_Visitor {
        void link(RE_Node*& target, RE_Link) override { targets.push_back(target); }
        std::vector<const RE_Node*> targets;
    };
    while (!pending.empty()) {
        const RE_Node* const node = pending.back();
        pending.pop_back();
        if (node == nullptr || std::find(seen.begin(), seen.end(), node) != seen.end()) {
            continue;
        }
        seen.push_back(node);
        const auto* const raw = reinterpret_cast<const unsigned char*>(node);
        bytes.insert(bytes.end(), raw, raw + sizeof(RE_Node));
        Links links;
        const_cast<RE_Node*>(node)->visitLinks(links);
        pending.insert(pending.end(), links.targets.begin(), links.targets.end());
    }
    return bytes;
}

// Any number of threads may search a tree, so a search must not write to it: compared byte by byte.
TEST(Tree, IsUnchangedByASearch) {
    for (const char16_t* pattern :
         {u"(a|b)*c\\1", u"(?:(?:ab){2,3}?c)*d", u"(?<=a+)(?>b*)(?!c)x", u"(?:|a)*(?i:KELVIN)"}) {
        const RE_Tree tree(pattern, false);
        const auto before = bytesOf(tree);
        for (const char16_t* subject : {u"abababcc", u"ababcababababcd", u"aabbx", u"aaakelvin", u""}) {
            delete tree.match(subject, std::u16string_view(subject).size(), 0);
        }
        EXPECT_EQ(before, bytesOf(tree));
    }
}

TEST(SimpleMatch, SearchesTheSubjectForThePattern) {
    EXPECT_TRUE(reMatch("abc", "b"));
    EXPECT_FALSE(reMatch("b", "abc"));
    EXPECT_FALSE(reMatch("ABC", "b"));
    EXPECT_TRUE(reMatchi("ABC", "b"));
    EXPECT_FALSE(reMatch("abc", "x*"));
    EXPECT_TRUE(reMatch("a\nb", "a.b"));
}

// Throws from the n-th call of any operation.
class Thrower : public RE_Context {
public:
    explicit Thrower(int calls) : left(calls) {}
    void warn(const char16_t*, RE_Warning) override { count(); }
    void set_string(const char16_t*, size_t) override { count(); }
    bool allow_evaluation() override { return count(), false; }
    void backreferenceCreationCallback() const override { count(); }
    void conditionalCreationCallback() const override { count(); }

private:
    void count() const {
        if (left-- == 0) {
            throw std::runtime_error("host");
        }
    }
    mutable int left;
};

// A constructor that throws hands out no tree: whatever the tree had taken by then has to go back.
TEST(Context, MayThrowFromEveryCallAndNothingLeaks) {
    const std::u16string pattern = u"(a{3}|b)*\\1(?(1)c|d)(?(?=x)y)\\q(?@z)(?<n>e)\\k<n>[";
    int calls = 0;
    for (bool thrown = true; thrown; ++calls) {
        Thrower host(calls);
        try {
            const RE_Tree tree(pattern.data(), pattern.size(), 0x12, &host);
            thrown = false;
        } catch (const std::runtime_error&) {
        }
    }
    // The number of calls that the pattern makes; fewer would mean that some path was not tried.
    EXPECT_EQ(10, calls);
}

}  // namespace
}  // namespace corvane_tests
