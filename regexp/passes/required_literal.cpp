#include "regexp/passes/required_literal.h"

#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/units.h"
#include "regexp/passes/prefix_scan.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t mostNodes = 500;
constexpr std::size_t mostVisits = 2000;
constexpr std::uint64_t mostCounted = 1'000'000;
constexpr std::size_t mostLiterals = 8;

/// Walks all ways from the root that do not lead through one literal.
class Around {
public:
    explicit Around(const RE_Node* literal) : avoided(literal) {}

    /// False when the end is reached, or something whose units are not known.
    bool walk(RE_Node* root) {
        reach(root, 0);
        for (std::size_t i = 0; holds && i < pending.size(); ++i) {
            RE_Node* const node = pending[i];
            visit(node, distances[node]);
            holds = holds && i < mostVisits;
        }
        return holds;
    }

    std::shared_ptr<RE_Unit_Set> units = RE_Unit_Set::make();
    std::uint64_t least = RE_Node::unboundedLength;  ///< units consumed on the shortest way to the literal

private:
    // A node is visited again when a shorter way to it turns up.
    void reach(RE_Node* node, std::uint64_t distance) {
        if (node == nullptr) {
            return;
        }
        if (node == avoided) {
            least = std::min(least, distance);
            return;
        }
        const auto [known, isNew] = distances.emplace(node, distance);
        if (isNew || distance < known->second) {
            known->second = distance;
            pending.push_back(node);
        }
    }

    void visit(RE_Node* node, std::uint64_t distance) {
        if (auto* unit = dynamic_cast<RE_Consumable*>(node); unit != nullptr && unit->isSingleUnit()) {
            unit->addUnitsTo(*units);
            reach(unit->nextNode, distance + 1);
            reach(unit->failTarget, distance);
        } else if (auto* string = dynamic_cast<RE_String*>(node)) {
            addText({string->text, string->length}, string->ignoreCase);
            reach(string->nextNode, distance + string->length);
        } else if (auto* loop = dynamic_cast<RE_Consume*>(node)) {
            units->addAll(*loop->units);
            reach(loop->nextNode, distance + std::min(loop->minimum, mostCounted));
        } else if (auto* set = dynamic_cast<RE_Literal_Set*>(node)) {
            addTexts(set->literals);
            reach(set->nextNode, distance + set->literals.shortest());
        } else if (auto* atomic = dynamic_cast<RE_Atomic*>(node)) {
            reach(atomic->body, distance);
            reach(atomic->nextNode, distance);
        } else if (auto* end = dynamic_cast<RE_End_Of_Tree*>(node)) {
            holds = end->endsBody;
        } else if (node->isEnd() || dynamic_cast<RE_Match_Token*>(node) != nullptr) {
            holds = false;
        } else {
            followWays(node, distance);
        }
    }

    void followWays(RE_Node* node, std::uint64_t distance) {
        struct Ways : RE_Link_Visitor {
            Ways(Around& walker, std::uint64_t consumed) : around(walker), distance(consumed) {}
            void link(RE_Node*& target, RE_Link kind) override {
                if (kind != RE_Link::body && kind != RE_Link::helper) {
                    around.reach(target, distance);
                }
            }
            Around& around;
            std::uint64_t distance;
        } ways(*this, distance);
        node->visitLinks(ways);
    }

    void addText(std::u16string_view text, bool ignoreCase) {
        for (const char16_t unit : text) {
            if (ignoreCase) {
                RE_Case_Table::get().addFolding(*units, unit, unit, false);
            } else {
                units->add(unit);
            }
        }
    }

    void addTexts(const RE_Literal_Trie& literals) {
        for (std::size_t i = 0; i < literals.count(); ++i) {
            addText(literals.text(i), literals.ignoresCase());
        }
    }

    const RE_Node* avoided;
    std::vector<RE_Node*, RE_Allocator<RE_Node*>> pending;
    std::unordered_map<RE_Node*, std::uint64_t> distances;
    bool holds = true;
};

/// The first literals on the ways from the root, outside of closed bodies.
std::vector<RE_Node*> literalsFrom(RE_Node* root) {
    struct Walker : RE_Link_Visitor {
        void link(RE_Node*& target, RE_Link kind) override {
            const bool onTheWay = kind == RE_Link::next || kind == RE_Link::done ||
                                  kind == RE_Link::alternative || kind == RE_Link::fail;
            if (onTheWay && target != nullptr && seen.insert(target).second) {
                nodes.push_back(target);
            }
        }
        std::unordered_set<RE_Node*> seen;
        std::vector<RE_Node*> nodes;
    } walker;
    std::vector<RE_Node*> found;
    walker.link(root, RE_Link::next);
    for (std::size_t i = 0; i < walker.nodes.size() && i < mostNodes && found.size() < mostLiterals; ++i) {
        RE_Node* const node = walker.nodes[i];
        if (dynamic_cast<const RE_String*>(node) != nullptr ||
            dynamic_cast<const RE_Natural*>(node) != nullptr ||
            dynamic_cast<const RE_Literal_Set*>(node) != nullptr) {
            found.push_back(node);
        }
        node->visitLinks(walker);
    }
    return found;
}

std::optional<RE_Text_Finder> finderOf(RE_Node* node) {
    if (dynamic_cast<const RE_Literal_Set*>(node) == nullptr) {
        return literalOf(node);
    }
    const std::optional<RE_Likely_Prefixes> prefixes = prefixesFrom(node, true);
    if (!prefixes) {
        return std::nullopt;
    }
    return RE_Text_Finder(prefixes->scan, prefixes->likelihood);
}

}  // namespace

std::optional<RE_Text_Finder> literalOf(const RE_Node* node) {
    if (const auto* string = dynamic_cast<const RE_String*>(node)) {
        return RE_Text_Finder({string->text, string->length}, string->ignoreCase);
    }
    const auto* const unit = dynamic_cast<const RE_Natural*>(node);
    if (unit == nullptr || unit->failTarget != nullptr || unit->ch > 0xFFFF) {
        return std::nullopt;
    }
    return RE_Text_Finder(std::u16string(1, static_cast<char16_t>(unit->ch)),
                          dynamic_cast<const RE_Natural_I*>(node) != nullptr);
}

std::optional<RE_Required_Literal> requiredLiteral(RE_Node* root) {
    std::optional<RE_Required_Literal> best;
    double bestLikelihood = 1;
    for (RE_Node* node : literalsFrom(root)) {
        std::optional<RE_Text_Finder> finder = finderOf(node);
        if (!finder || finder->likelihood() >= bestLikelihood) {
            continue;
        }
        Around around(node);
        if (around.walk(root)) {
            bestLikelihood = finder->likelihood();
            best.emplace(RE_Required_Literal{std::move(*finder), around.units, around.least});
        }
    }
    return best;
}
