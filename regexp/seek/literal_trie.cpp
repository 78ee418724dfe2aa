// The tree is made breadth first from the sorted literals, without recursion: literals may be as many and as
// long as memory allows.
#include "regexp/seek/literal_trie.h"

#include <algorithm>

namespace {

// Up to so many children are compared one by one; more are found by bisection.
constexpr std::uint32_t fewChildren = 6;

/// A literal to be sorted, with its first four units as a number. Most comparisons look no further.
struct Sorted_Literal {
    std::uint64_t first;
    std::uint32_t number;
};

/// The first unit is in the highest bits, so that numbers compare as texts do. A text that ends is filled up
/// with zeros: it sorts before, or ties with, one that continues, and ties are decided by the texts.
std::uint64_t firstUnits(std::u16string_view text) {
    std::uint64_t first = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        first = first << 16 | (i < text.size() ? text[i] : u'\0');
    }
    return first;
}

/// The numbers of the literals in the order of their texts; of equal ones the first in the pattern comes
/// first.
std::vector<std::uint32_t> inOrder(const std::vector<std::u16string_view>& literals) {
    std::vector<Sorted_Literal> entries;
    entries.reserve(literals.size());
    for (const std::u16string_view text : literals) {
        entries.push_back({firstUnits(text), static_cast<std::uint32_t>(entries.size())});
    }
    std::ranges::sort(entries, [&](const Sorted_Literal& a, const Sorted_Literal& b) {
        if (a.first != b.first) {
            return a.first < b.first;
        }
        const int order = literals[a.number].compare(literals[b.number]);
        return order != 0 ? order < 0 : a.number < b.number;
    });
    std::vector<std::uint32_t> numbers;
    numbers.reserve(entries.size());
    for (const Sorted_Literal& entry : entries) {
        numbers.push_back(entry.number);
    }
    return numbers;
}

}  // namespace

RE_Literal_Trie::RE_Literal_Trie(const Literals& literals, bool ignoreCase)
    : cases(ignoreCase ? &RE_Case_Table::get() : nullptr) {
    grow(copy(literals));
    fillTable();
}

// Copies the literals in the order of the pattern, without repetitions, and numbers them anew. Returns the
// new numbers in the order of their texts.
RE_Literal_Trie::Order RE_Literal_Trie::copy(const Literals& literals) {
    Order sorted = inOrder(literals);
    std::vector<bool> repeated(literals.size());
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        repeated[sorted[i]] = literals[sorted[i]] == literals[sorted[i - 1]];
    }
    std::erase_if(sorted, [&](std::uint32_t literal) { return repeated[literal]; });
    Order numbers(literals.size());
    std::size_t length = 0;
    for (const std::u16string_view literal : literals) {
        length += literal.size();
    }
    units.reserve(length);
    starts.reserve(literals.size() + 1);
    starts.push_back(0);
    least = literals.front().size();
    for (std::size_t i = 0; i < literals.size(); ++i) {
        if (!repeated[i]) {
            const std::u16string_view literal = literals[i];
            numbers[i] = static_cast<std::uint32_t>(count());
            units.insert(units.end(), literal.begin(), literal.end());
            starts.push_back(static_cast<std::uint32_t>(units.size()));
            least = std::min(least, literal.size());
            greatest = std::max(greatest, literal.size());
        }
    }
    std::ranges::transform(sorted, sorted.begin(), [&](std::uint32_t literal) { return numbers[literal]; });
    return sorted;
}

// Breadth first, so that the children of a node are neighbours in `nodes` and `leads`. Sorting has put all
// literals of a child side by side. The reservation holds: a node is a literal's end or has two children, but
// for the root.
void RE_Literal_Trie::grow(const Order& sorted) {
    const std::size_t mostNodes = 2 * sorted.size() + 1;
    std::vector<Branch> pending;
    pending.reserve(mostNodes);
    nodes.reserve(mostNodes);
    leads.reserve(mostNodes);
    nodes.push_back({0, 0, none, 0, 0});
    leads.push_back(0);
    pending.push_back({0, 0, sorted.size(), 0});
    for (std::size_t next = 0; next < pending.size(); ++next) {
        Branch rest = growNode(pending[next], sorted);
        while (rest.first < rest.last) {
            const char16_t lead = text(sorted[rest.first])[rest.depth];
            const auto past = std::partition_point(
                sorted.begin() + static_cast<std::ptrdiff_t>(rest.first),
                sorted.begin() + static_cast<std::ptrdiff_t>(rest.last),
                [&](std::uint32_t literal) { return text(literal)[rest.depth] == lead; });
            const auto last = static_cast<std::size_t>(past - sorted.begin());
            pending.push_back({static_cast<std::uint32_t>(nodes.size()), rest.first, last, rest.depth});
            nodes.push_back({0, 0, none, 0, 0});
            leads.push_back(lead);
            ++nodes[rest.node].children;
            rest.first = last;
        }
    }
    nodes.shrink_to_fit();
    leads.shrink_to_fit();
}

// All literals of the branch pass through the node, which takes the units that they have in common: as they
// are sorted, those that the first and the last share. A literal that ends there is the node's own. Returns
// the rest of the branch.
RE_Literal_Trie::Branch RE_Literal_Trie::growNode(Branch branch, const Order& sorted) {
    Node& node = nodes[branch.node];
    node.text = static_cast<std::uint32_t>(starts[sorted[branch.first]] + branch.depth);
    if (branch.node != 0) {
        const std::u16string_view one = text(sorted[branch.first]);
        const std::u16string_view other = text(sorted[branch.last - 1]);
        const auto differing =
            std::mismatch(one.begin() + static_cast<std::ptrdiff_t>(branch.depth), one.end(),
                          other.begin() + static_cast<std::ptrdiff_t>(branch.depth), other.end());
        const auto common = static_cast<std::size_t>(differing.first - one.begin());
        node.length = static_cast<std::uint32_t>(common - branch.depth);
        branch.depth = common;
        if (one.size() == common) {
            node.literal = sorted[branch.first++];
        }
    }
    node.firstChild = static_cast<std::uint32_t>(nodes.size());
    return branch;
}

// For units of the subject below 128 the way from the root is one look-up, in all the forms that fold to a
// child.
void RE_Literal_Trie::fillTable() {
    roots.fill(noRoot);
    const Node& root = nodes[0];
    for (std::uint32_t i = root.firstChild; i < root.firstChild + root.children; ++i) {
        const auto number = static_cast<std::uint8_t>(std::min<std::uint32_t>(i - root.firstChild, farRoot));
        const auto put = [this, number](char16_t unit) {
            if (unit < tableUnits) {
                roots[unit] = number;
            }
        };
        if (cases != nullptr) {
            cases->forEachForm(leads[i], put);
        } else {
            put(leads[i]);
        }
    }
}

// Children are sorted by their first units, as the literals were.
std::uint32_t RE_Literal_Trie::child(const Node& node, char16_t unit) const {
    const char16_t* const first = leads.data() + node.firstChild;
    const char16_t* const last = first + node.children;
    const char16_t* const at =
        node.children <= fewChildren ? std::find(first, last, unit) : std::lower_bound(first, last, unit);
    return at != last && *at == unit ? static_cast<std::uint32_t>(at - leads.data()) : none;
}

// The table knows all forms of a unit; beyond it the unit is folded first.
std::uint32_t RE_Literal_Trie::branchAt(char16_t unit) const {
    const std::uint8_t number = unit < tableUnits ? roots[unit] : farRoot;
    if (number == farRoot) {
        return child(nodes[0], cases != nullptr ? cases->lower(unit) : unit);
    }
    return number != noRoot ? nodes[0].firstChild + number : none;
}

// Whether the rest of the node's units is at `p`. Its first unit was compared on the way to it.
template <bool folds>
bool RE_Literal_Trie::continues(const Node& node, const char16_t* p) const {
    const char16_t* const own = units.data() + node.text;
    for (std::uint32_t i = 1; i < node.length; ++i) {
        if ((folds ? cases->lower(p[i]) : p[i]) != own[i]) {
            return false;
        }
    }
    return true;
}

template <bool folds>
RE_Literal_Trie::Found RE_Literal_Trie::walk(const char16_t* p, const char16_t* end,
                                             std::uint32_t from) const {
    Found found;
    const char16_t* const start = p;
    for (std::uint32_t at = branchAt(*p); at != none;) {
        const Node& node = nodes[at];
        if (static_cast<std::size_t>(end - p) < node.length || !continues<folds>(node, p)) {
            break;
        }
        p += node.length;
        // Deeper in the tree are longer literals, not later ones: the lowest number wins, and any second one
        // makes a choice.
        if (node.literal != none && node.literal >= from) {
            found.hasLater = found.length != 0;
            if (!found.hasLater || node.literal < found.literal) {
                found.literal = node.literal;
                found.length = static_cast<std::size_t>(p - start);
            }
        }
        if (p == end || node.children == 0) {
            break;
        }
        at = child(node, folds ? cases->lower(*p) : *p);
    }
    return found;
}

// Two instances of the walk: without case there is no test for it in the loop.
RE_Literal_Trie::Found RE_Literal_Trie::find(const char16_t* p, const char16_t* end,
                                             std::uint32_t from) const {
    return p == end ? Found() : cases == nullptr ? walk<false>(p, end, from) : walk<true>(p, end, from);
}

// A literal that begins others ends at a node with children.
bool RE_Literal_Trie::areFew() const {
    constexpr std::size_t few = 16;
    constexpr std::size_t shortText = 32;
    const auto beginsOthers = [](const Node& node) { return node.literal != none && node.children != 0; };
    return count() <= few && longest() <= shortText && !ignoresCase() &&
           std::ranges::none_of(nodes, beginsOthers);
}
