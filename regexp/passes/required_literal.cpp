#include "regexp/passes/required_literal.h"

#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/units.h"

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
            addText(*string);
            reach(string->nextNode, distance + string->length);
        } else if (auto* loop = dynamic_cast<RE_Consume*>(node)) {
            units->addAll(*loop->units);
            reach(loop->nextNode, distance + std::min(loop->minimum, mostCounted));
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

    void addText(const RE_String& string) {
        for (std::uint64_t i = 0; i < string.length; ++i) {
            if (string.ignoreCase) {
                RE_Case_Table::get().addFolding(*units, string.text[i], string.text[i], false);
            } else {
                units->add(string.text[i]);
            }
        }
    }

    const RE_Node* avoided;
    std::vector<RE_Node*, RE_Allocator<RE_Node*>> pending;
    std::unordered_map<RE_Node*, std::uint64_t> distances;
    bool holds = true;
};

/// The first literals on the ways from the root, outside of closed bodies.
std::vector<const RE_Node*> literalsFrom(RE_Node* root) {
    struct Walker : RE_Link_Visitor {
        void link(RE_Node*& target, RE_Link kind) override {
            const bool onTheWay = kind == RE_Link::next || kind == RE_Link::done || kind == RE_Link::alternative ||
                                  kind == RE_Link::fail;
            if (onTheWay && target != nullptr && seen.insert(target).second) {
                nodes.push_back(target);
            }
        }
        std::unordered_set<RE_Node*> seen;
        std::vector<RE_Node*> nodes;
    } walker;
    std::vector<const RE_Node*> found;
    walker.link(root, RE_Link::next);
    for (std::size_t i = 0; i < walker.nodes.size() && i < mostNodes && found.size() < mostLiterals; ++i) {
        RE_Node* const node = walker.nodes[i];
        if (literalOf(node)) {
            found.push_back(node);
        }
        node->visitLinks(walker);
    }
    return found;
}

}  // namespace

std::optional<RE_Required_Literal> literalOf(const RE_Node* node) {
    if (const auto* string = dynamic_cast<const RE_String*>(node)) {
        return RE_Required_Literal{{string->text, string->length}, string->ignoreCase, nullptr, 0};
    }
    const auto* const unit = dynamic_cast<const RE_Natural*>(node);
    if (unit == nullptr || unit->failTarget != nullptr || unit->ch > 0xFFFF) {
        return std::nullopt;
    }
    const bool folds = dynamic_cast<const RE_Natural_I*>(node) != nullptr;
    return RE_Required_Literal{std::u16string(1, static_cast<char16_t>(unit->ch)), folds, nullptr, 0};
}

std::optional<RE_Required_Literal> requiredLiteral(RE_Node* root) {
    std::optional<RE_Required_Literal> best;
    double bestLikelihood = 1;
    for (const RE_Node* node : literalsFrom(root)) {
        std::optional<RE_Required_Literal> literal = literalOf(node);
        const double likelihood = literal->search().likelihood();
        if (likelihood >= bestLikelihood) {
            continue;
        }
        Around around(node);
        if (around.walk(root)) {
            literal->before = around.units;
            literal->leastBefore = around.least;
            best = std::move(literal);
            bestLikelihood = likelihood;
        }
    }
    return best;
}
