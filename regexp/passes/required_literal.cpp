#include "regexp/passes/required_literal.h"

#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/links.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/units.h"
#include "regexp/passes/prefix_scan.h"

#include <algorithm>
#include <memory_resource>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t mostNodes = 500;
constexpr std::size_t mostVisits = 2000;
constexpr std::uint64_t mostCounted = 1'000'000;
constexpr std::uint64_t mostDistance = static_cast<std::uint32_t>(-1);
constexpr std::size_t mostLiterals = 8;
constexpr std::size_t usualNodes = 32;

/// Walks all ways from the root that do not lead through one literal.
class Around {
public:
    Around(RE_ParserContext& parserContext, const RE_Node* literal)
        : context(parserContext),
          avoided(literal),
          pending(&parserContext.scratch),
          added(&parserContext.scratch) {}

    /// False when the end is reached, or something whose units are not known.
    bool walk(RE_Node* root) {
        // Most literals can be done without, which is seen soon by going straight on, and before units are gathered.
        begin(root);
        for (std::size_t i = 0; holds && !pending.empty(); ++i) {
            RE_Node* const node = pending.back();
            pending.pop_back();
            visit(node, 0);
            holds = holds && i < mostVisits;
        }
        if (!holds) {
            return false;
        }
        units = context.sets.blank();
        least = RE_Node::unboundedLength;
        begin(root);
        for (std::size_t i = 0; holds && i < pending.size(); ++i) {
            RE_Node* const node = pending[i];
            visit(node, node->walkNote);
            holds = holds && i < mostVisits;
        }
        return holds;
    }

    std::shared_ptr<RE_Unit_Set> units;
    std::uint64_t least = RE_Node::unboundedLength;  ///< units consumed on the shortest way to the literal

private:
    void begin(RE_Node* root) {
        number = context.nextWalk();
        pending.clear();
        reach(root, 0);
    }

    // A node is visited again when a shorter way to it turns up. Distances are noted in the nodes, up to a limit: what is
    // asked for is a lower bound.
    void reach(RE_Node* node, std::uint64_t distance) {
        if (node == nullptr) {
            return;
        }
        if (node == avoided) {
            least = std::min(least, distance);
            return;
        }
        const auto noted = static_cast<std::uint32_t>(std::min(distance, mostDistance));
        if (node->walk != number || (units != nullptr && noted < node->walkNote)) {
            node->walk = number;
            node->walkNote = noted;
            pending.push_back(node);
        }
    }

    void visit(RE_Node* node, std::uint64_t distance) {
        if (auto* unit = nodeAs<RE_Unit_Test>(node)) {
            addUnits(*unit);
            reach(unit->nextNode, distance + 1);
            reach(unit->failTarget, distance);
        } else if (auto* string = nodeAs<RE_String>(node)) {
            addText({string->text, string->length}, string->ignoreCase);
            reach(string->nextNode, distance + string->length);
        } else if (auto* loop = nodeAs<RE_Consume>(node)) {
            addSet(*loop->units);
            reach(loop->nextNode, distance + std::min(loop->minimum, mostCounted));
        } else if (auto* set = nodeAs<RE_Literal_Set>(node)) {
            addTexts(set->literals);
            reach(set->nextNode, distance + set->literals.shortest());
        } else if (auto* atomic = nodeAs<RE_Atomic>(node)) {
            reach(atomic->body, distance);
            reach(atomic->nextNode, distance);
        } else if (auto* end = nodeAs<RE_End_Of_Tree>(node)) {
            holds = end->endsBody;
        } else if (node->isEnd() || nodeAs<RE_Match_Token>(node) != nullptr) {
            holds = false;
        } else {
            forEachWay(*node, [this, distance](RE_Node* target) { reach(target, distance); });
        }
    }

    void addUnits(const RE_Consumable& unit) {
        if (const RE_Unit_Set* const table = unit.table()) {
            addSet(*table);
        } else if (units != nullptr) {
            unit.addUnitsTo(*units);
        }
    }

    // Many nodes share their sets.
    void addSet(const RE_Unit_Set& set) {
        if (units != nullptr && std::find(added.begin(), added.end(), &set) == added.end()) {
            units->addAll(set);
            added.insert(added.end(), added.size() < mostAdded ? 1 : 0, &set);
        }
    }

    void addText(std::u16string_view text, bool ignoreCase) {
        if (units == nullptr) {
            return;
        }
        for (const char16_t unit : text) {
            if (ignoreCase) {
                RE_Case_Table::get().addFolding(*units, unit, unit, false);
            } else {
                units->add(unit);
            }
        }
    }

    void addTexts(const RE_Literal_Trie& literals) {
        if (units == nullptr) {
            return;
        }
        for (std::size_t i = 0; i < literals.count(); ++i) {
            addText(literals.text(i), literals.ignoresCase());
        }
    }

    static constexpr std::size_t mostAdded = 32;

    RE_ParserContext& context;
    const RE_Node* avoided;
    std::uint32_t number = 0;
    std::pmr::vector<RE_Node*> pending;
    std::pmr::vector<const RE_Unit_Set*> added;
    bool holds = true;
};

/// The first literals on the ways from the root, outside of closed bodies.
std::pmr::vector<RE_Node*> literalsFrom(RE_ParserContext& context, RE_Node* root) {
    const std::uint32_t walk = context.nextWalk();
    std::pmr::vector<RE_Node*> nodes(&context.scratch);
    std::pmr::vector<RE_Node*> found(&context.scratch);
    nodes.reserve(usualNodes);
    found.reserve(mostLiterals);
    const auto follow = [&](RE_Node* target, RE_Link kind) {
        const bool onTheWay = kind == RE_Link::next || kind == RE_Link::done ||
                              kind == RE_Link::alternative || kind == RE_Link::fail;
        if (onTheWay && target != nullptr && target->walk != walk) {
            target->walk = walk;
            nodes.push_back(target);
        }
    };
    follow(root, RE_Link::next);
    for (std::size_t i = 0; i < nodes.size() && i < mostNodes && found.size() < mostLiterals; ++i) {
        RE_Node* const node = nodes[i];
        if (nodeAs<RE_String>(node) != nullptr || nodeAs<RE_Natural>(node) != nullptr ||
            nodeAs<RE_Literal_Set>(node) != nullptr) {
            found.push_back(node);
        }
        forEachLink(*node, follow);
    }
    return found;
}

std::optional<RE_Text_Finder> finderOf(RE_ParserContext& context, RE_Node* node) {
    if (nodeAs<RE_Literal_Set>(node) == nullptr) {
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
    if (unit == nullptr || unit->failTarget != nullptr || unit->ch > 0xFFFF) {
        return std::nullopt;
    }
    return RE_Text_Finder(std::u16string(1, static_cast<char16_t>(unit->ch)),
                          nodeAs<RE_Natural_I>(node) != nullptr);
}

std::vector<RE_Found_Literal> requiredLiterals(RE_ParserContext& context, RE_Node* root) {
    std::vector<RE_Found_Literal> required;
    for (RE_Node* node : literalsFrom(context, root)) {
        Around around(context, node);
        if (!around.walk(root)) {
            continue;
        }
        std::optional<RE_Text_Finder> finder = finderOf(context, node);
        if (finder && finder->likelihood() < 1) {
            required.push_back({node, {std::move(*finder), std::move(around.units), around.least}});
        }
    }
    std::stable_sort(required.begin(), required.end(), [](const auto& one, const auto& other) {
        return one.literal.finder.likelihood() < other.literal.finder.likelihood();
    });
    return required;
}
