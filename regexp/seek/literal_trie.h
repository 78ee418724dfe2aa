// Many literals in a tree that shares their beginnings: one walk over the subject finds all that occur at a
// position.
//
// A tree node holds a run of units, so the tree has fewer than two nodes for each literal, however long they
// are, and a walk takes time in proportion to the longest literal only. Nodes refer to each other and to the
// text by index, so that the vectors may move. The children of a node lie side by side, sorted by their first
// units.
//
// Invariant: literals keep their order. The number of a literal is its rank in the pattern, and it is by this
// number that alternatives are tried one after another: neither the shape of the tree nor the sorting shows
// outside.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/units/unit_set.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

class CORVANE_REGEXP_EXPORT RE_Literal_Trie {
public:
    using Literals = std::vector<std::u16string_view>;

    /// No literal may be empty. They are in lower case when case is ignored. Of equal literals the first
    /// counts, as what fails after it fails after the others. The texts are copied.
    RE_Literal_Trie(const Literals& literals, bool ignoreCase);

    /// What is at a position: the first literal, in the order of the pattern, whose number is not below
    /// the given one.
    struct Found {
        std::uint32_t literal = 0;
        bool hasLater = false;   ///< a later one is there, too: the caller has a choice to leave
        std::size_t length = 0;  ///< 0: there is none
    };
    /// `from` is 0 at first, and the number after the last literal taken when that has failed. Reads no unit
    /// at or past `end`.
    Found find(const char16_t* p, const char16_t* end, std::uint32_t from) const;

    /// The literals in their order, each once.
    std::size_t count() const { return starts.size() - 1; }
    std::u16string_view text(std::size_t literal) const {
        return {units.data() + starts[literal], starts[literal + 1] - starts[literal]};
    }
    /// Whether they are few and short, keep to their case, and none begins another: at most one of them
    /// stands anywhere, and they may be written out as comparisons.
    bool areFew() const;
    std::size_t shortest() const { return least; }
    std::size_t longest() const { return greatest; }
    bool ignoresCase() const { return cases != nullptr; }
    /// Calls `visit` with each unit with which a literal can begin.
    template <class Visit>
    void forEachFirstUnit(Visit visit) const {
        const Node& root = nodes[0];
        for (std::uint32_t i = root.firstChild; i < root.firstChild + root.children; ++i) {
            if (cases != nullptr) {
                cases->forEachForm(leads[i], visit);
            } else {
                visit(leads[i]);
            }
        }
    }

private:
    static constexpr std::uint32_t none = static_cast<std::uint32_t>(-1);
    static constexpr std::size_t tableUnits = 128;

    struct Node {
        std::uint32_t text;  // where its units begin, which follow those of its parent
        std::uint32_t length;
        std::uint32_t literal;  // that ends with it, or `none`
        std::uint32_t firstChild;
        std::uint32_t children;
    };
    /// A part of the tree that is still to be made: its node, the sorted literals [first, last) that pass
    /// through it, and how many units of them the nodes above have taken.
    struct Branch {  // of the tree, to be made: its node, and the sorted literals that go through it
        std::uint32_t node;
        std::size_t first;
        std::size_t last;
        std::size_t depth;
    };
    using Order = std::vector<std::uint32_t>;

    Order copy(const Literals& literals);
    void grow(const Order& sorted);
    Branch growNode(Branch branch, const Order& sorted);
    void fillTable();
    std::uint32_t child(const Node& node, char16_t unit) const;
    std::uint32_t branchAt(char16_t unit) const;
    template <bool folds>
    Found walk(const char16_t* p, const char16_t* end, std::uint32_t from) const;
    template <bool folds>
    bool continues(const Node& node, const char16_t* p) const;

    const RE_Case_Table* cases;  // null when case counts
    std::vector<char16_t, RE_Allocator<char16_t>> units;
    std::vector<std::uint32_t, RE_Allocator<std::uint32_t>> starts;
    std::vector<Node, RE_Allocator<Node>> nodes;          // the root is the first
    std::vector<char16_t, RE_Allocator<char16_t>> leads;  // the first unit of each node
    // The children of the root by the subject's unit, as their numbers among them, or one of these two.
    static constexpr std::uint8_t noRoot = 255;
    static constexpr std::uint8_t farRoot = 254;  // it has to be looked up
    std::array<std::uint8_t, tableUnits> roots;
    std::size_t least = 0;
    std::size_t greatest = 0;
};
