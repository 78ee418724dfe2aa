// Looks for literals near the front of the graph, keeps the bottlenecks among them, and measures the ways
// that lead up to one.
//
// Why the measure is right: the literal is a bottleneck, so a way that avoids it never reaches the end of the
// pattern, nor a node whose units are not known. All that is met on ways up to the literal is therefore
// known, and the units gathered there are all that a match can have in front of its first such literal.
#include "regexp/analysis/required_literal.h"

#include "regexp/analysis/bottlenecks.h"
#include "regexp/analysis/prefix_scan.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/links.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/split.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/unit_union.h"
#include "regexp/nodes/units.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

// Bounds of cost. Beyond them literals are not found, or not used.
constexpr std::size_t mostNodes = 500;
constexpr std::size_t mostVisitsToLiterals = 2000;
// The least number of units in front of a literal is counted up to these bounds only, so that sums stay small
// and fit the note of a node. Both only make the number smaller, and it is a lower bound.
constexpr std::uint64_t mostCounted = 1'000'000;
constexpr std::uint64_t mostDistance = static_cast<std::uint32_t>(-1);
constexpr std::size_t mostLiterals = 8;
constexpr std::size_t usualNodesBefore = 32;

/// Walks all ways from the root that do not lead through one literal, which is a bottleneck. Distances are
/// numbers of units.
class Around {
public:
    Around(RE_Graph_Context& parserContext, const RE_Node* literal)
        : meter(parserContext.meter),
          gathered(parserContext.sets),
          avoided(literal),
          number(parserContext.nextWalk()),
          pending(&parserContext.scratch) {}

    /// False when there are too many visits: a node is visited once for each shorter way to it.
    bool walk(RE_Node* root) {
        pending.reserve(usualNodesBefore);
        reach(root, 0);
        for (std::size_t i = 0; i < pending.size(); ++i) {
            if (i == mostVisitsToLiterals) {
                return false;
            }
            meter.spend();
            visit(pending[i], pending[i]->walkNote);
        }
        return true;
    }

    RE_Compile_Meter& meter;
    RE_Unit_Union gathered;
    std::uint64_t least = RE_Node::unboundedLength;  ///< units consumed on the shortest way to the literal

private:
    // A node is visited again when a shorter way to it turns up. Distances are noted in the nodes, up to a
    // limit: what is sought is a lower bound.
    void reach(RE_Node* node, std::uint64_t distance) {
        if (node == nullptr) {
            return;
        }
        if (node == avoided) {
            least = std::min(least, distance);
            return;
        }
        const auto noted = static_cast<std::uint32_t>(std::min(distance, mostDistance));
        if (node->walk != number || noted < node->walkNote) {
            node->walk = number;
            node->walkNote = noted;
            pending.push_back(node);
        }
    }

    /// Adds the units that a node may consume, and passes on how many it consumes at the least.
    class Reader {
    public:
        Reader(Around& walk, std::uint64_t consumed) : around(walk), distance(consumed) {}

        /// Continues at a node after so many more units.
        void reach(RE_Node* node, std::uint64_t consumed = 0) const {
            around.reach(node, distance + consumed);
        }

        void operator()(const RE_Meanings::Unit& node) const {
            around.gathered.addConsumable(*node.test);
            reach(node.next, 1);
            reach(node.otherwise);
        }
        void operator()(const RE_Meanings::Run& node) const {
            around.gathered.addAll(*node.loop->units);
            reach(node.next, std::min(node.loop->minimum, mostCounted));
        }
        void operator()(const RE_Meanings::Text& node) const {
            const RE_String& string = *node.string;
            around.gathered.addText({string.text, string.length}, string.ignoreCase);
            reach(node.next, string.length);
        }
        void operator()(const RE_Meanings::Texts& node) const {
            const RE_Literal_Trie& literals = node.set->literals;
            for (std::size_t i = 0; i < literals.count(); ++i) {
                around.gathered.addText(literals.text(i), literals.ignoresCase());
            }
            reach(node.next, literals.shortest());
        }
        void operator()(const RE_Meanings::Unknown& node) const { step(node); }
        void operator()(const RE_Meanings::Nothing& node) const { step(node); }
        void operator()(const RE_Meanings::Edge& node) const { step(node); }
        void operator()(const RE_Meanings::Mark& node) const { step(node); }
        void operator()(const RE_Meanings::Choice& node) const { step(node); }
        void operator()(const RE_Meanings::Count_Start& node) const { step(node); }
        void operator()(const RE_Meanings::Count& node) const { step(node); }
        void operator()(const RE_Meanings::Pass& node) const { step(node); }
        void operator()(const RE_Meanings::Body& node) const { step(node); }
        void operator()(const RE_Meanings::Reference& node) const { step(node); }
        void operator()(const RE_Meanings::Condition& node) const { step(node); }
        void operator()(const RE_Meanings::Host_Call& node) const { step(node); }
        void operator()(const RE_Meanings::Host_Text& node) const { step(node); }
        void operator()(const RE_Meanings::End& node) const { step(node); }

    private:
        /// What these consume, if anything, no step leads past.
        template <class Form>
        void step(const Form& node) const {
            const auto follow = [this](RE_Node* target) { reach(target); };
            RE_Step_Reader<decltype(follow)>{follow}(node);
        }

        Around& around;
        std::uint64_t distance;
    };

    void visit(RE_Node* node, std::uint64_t distance) { visitMeaning(*node, Reader{*this, distance}); }

    const RE_Node* avoided;
    std::uint32_t number;
    RE_Scratch_List<RE_Node*> pending;
};

bool isLiteral(const RE_Node* node) {
    return nodeAs<RE_String>(node) != nullptr || nodeAs<RE_Natural>(node) != nullptr ||
           nodeAs<RE_Literal_Set>(node) != nullptr;
}

bool isChoice(const RE_Node* node) {
    return nodeAs<RE_Split>(node) != nullptr || nodeAs<RE_Dispatch>(node) != nullptr;
}

/// The first nodes of one sort on the ways from the root, outside of closed bodies but for that of a last lookahead. Not all
/// of them are required.
RE_Scratch_List<RE_Node*> nodesFrom(RE_Graph_Context& context, RE_Node* root,
                                    bool (*isSought)(const RE_Node*)) {
    const std::uint32_t walk = context.nextWalk();
    RE_Scratch_List<RE_Node*> nodes(&context.scratch);
    RE_Scratch_List<RE_Node*> found(&context.scratch);
    nodes.reserve(usualNodesBefore);
    found.reserve(mostLiterals);
    const auto follow = [&](RE_Node* target) {
        if (target->walk != walk) {
            target->walk = walk;
            nodes.push_back(target);
        }
    };
    follow(root);
    for (std::size_t i = 0; i < nodes.size() && i < mostNodes && found.size() < mostLiterals; ++i) {
        RE_Node* const node = nodes[i];
        context.meter.spend();
        if (isSought(node)) {
            found.push_back(node);
        }
        if (const auto* const look = nodeAs<RE_Lookaround_Assertion>(node); look != nullptr && look->isLast) {
            follow(look->body);
        } else {
            forEachWay(*node, follow);
        }
    }
    return found;
}

/// What seeks the node in a text: its text, or the prefixes of a set of literals, or of what a choice leads to. Nothing where
/// it cannot be sought.
std::optional<RE_Text_Finder> finderOf(RE_Graph_Context& context, RE_Node* node) {
    if (nodeAs<RE_Literal_Set>(node) == nullptr && !isChoice(node)) {
        return literalOf(node);
    }
    const std::optional<RE_Likely_Prefixes> prefixes = prefixesFrom(context, node, true);
    if (!prefixes) {
        return std::nullopt;
    }
    return RE_Text_Finder(prefixes->scan, prefixes->likelihood);
}

}  // namespace

std::optional<RE_Text_Finder> literalOf(const RE_Node* node) {
    if (const auto* string = nodeAs<RE_String>(node)) {
        return RE_Text_Finder({string->text, string->length}, string->ignoreCase);
    }
    const auto* const unit = nodeAs<RE_Natural>(node);
    // With a fail target the unit is one of several that are possible.
    if (unit == nullptr || unit->failTarget != nullptr || unit->ch > 0xFFFF) {
        return std::nullopt;
    }
    return RE_Text_Finder(std::u16string(1, static_cast<char16_t>(unit->ch)),
                          nodeAs<RE_Natural_I>(node) != nullptr);
}

namespace {

/// Those of the sought nodes that every match passes, rarest first.
std::vector<RE_Found_Literal> requiredNodes(RE_Graph_Context& context, RE_Node* root,
                                            bool (*isSought)(const RE_Node*)) {
    std::vector<RE_Found_Literal> required;
    RE_Scratch_List<RE_Node*> nodes = nodesFrom(context, root, isSought);
    if (!nodes.empty()) {
        keepBottlenecks(context, root, nodes);
    }
    required.reserve(nodes.size());
    for (RE_Node* node : nodes) {
        std::optional<RE_Text_Finder> finder = finderOf(context, node);
        if (finder && finder->likelihood() < 1) {
            // Equal ones stay in the order in which they were met.
            const auto rarerThan = [](double share, const RE_Found_Literal& other) {
                return share < other.likelihood();
            };
            const auto place =
                std::upper_bound(required.begin(), required.end(), finder->likelihood(), rarerThan);
            required.insert(place, {node, {std::move(*finder), nullptr, 0}, isChoice(node)});
        }
    }
    return required;
}

}  // namespace

// Where no literal is in all matches, one of those that a choice leads to is.
std::vector<RE_Found_Literal> requiredLiterals(RE_Graph_Context& context, RE_Node* root) {
    std::vector<RE_Found_Literal> required = requiredNodes(context, root, isLiteral);
    return required.empty() ? requiredNodes(context, root, isChoice) : required;
}

bool surround(RE_Graph_Context& context, RE_Node* root, RE_Found_Literal& found) {
    Around around(context, found.node);
    if (!around.walk(root)) {
        return false;
    }
    found.literal.before = around.gathered.take();
    found.literal.leastBefore = around.least;
    return true;
}
