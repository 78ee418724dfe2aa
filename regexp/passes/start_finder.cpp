#include "regexp/passes/start_finder.h"

#include "regexp/nodes/anchors.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/collection.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/seeker.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/units.h"

#include <memory>
#include <unordered_set>
#include <vector>

namespace {

// A set with more units than this rules out too little to be worth a scan.
constexpr std::size_t widestUsefulSet = 60'000;

/// Gathers the units with which a match that consumes anything can start.
class First_Units {
public:
    /// False when nothing can be said.
    bool gather(RE_Node* root) {
        follow(root);
        while (known && !pending.empty()) {
            RE_Node* const node = pending.back();
            pending.pop_back();
            visit(node);
        }
        return known;
    }

    std::shared_ptr<RE_Unit_Set> units = std::make_shared<RE_Unit_Set>();
    bool mayBeEmpty = false;

private:
    void follow(RE_Node* node) {
        if (node != nullptr && seen.insert(node).second) {
            pending.push_back(node);
        }
    }

    void visit(RE_Node* node) {
        if (auto* unit = dynamic_cast<RE_Consumable*>(node); unit != nullptr && unit->isSingleUnit()) {
            unit->addUnitsTo(*units);
            follow(unit->failTarget);
        } else if (auto* string = dynamic_cast<RE_String*>(node)) {
            addFirst(*string);
        } else if (auto* consume = dynamic_cast<RE_Consume*>(node)) {
            consume->item->addUnitsTo(*units);
            if (consume->minimum == 0) {
                follow(consume->nextNode);
            }
        } else if (auto* atomic = dynamic_cast<RE_Atomic*>(node)) {
            follow(atomic->body);
            if (atomic->bodyMinimum == 0) {
                follow(atomic->nextNode);
            }
        } else if (auto* end = dynamic_cast<RE_End_Of_Tree*>(node)) {
            mayBeEmpty = mayBeEmpty || !end->endsBody;
            known = known && end->continuation == nullptr;
        } else if (dynamic_cast<RE_Match_Token*>(node) != nullptr) {
            known = false;
        } else {
            followWays(node);
        }
    }

    void followWays(RE_Node* node) {
        struct Ways : RE_Link_Visitor {
            explicit Ways(First_Units& first) : units(first) {}
            void link(RE_Node*& target, RE_Link kind) override {
                if (kind != RE_Link::body && kind != RE_Link::helper) {
                    units.follow(target);
                }
            }
            First_Units& units;
        } ways(*this);
        node->visitLinks(ways);
    }

    void addFirst(const RE_String& string) {
        if (!string.ignoreCase) {
            units->add(string.text[0]);
            return;
        }
        RE_Case_Table::get().addFolding(*units, string.text[0], string.text[0], false);
    }

    std::vector<RE_Node*, RE_Allocator<RE_Node*>> pending;
    std::unordered_set<RE_Node*> seen;
    bool known = true;
};

/// The first node that is more than an opening group.
RE_Node* leadingNode(RE_Node* root) {
    while (root->isStartToken() || (root->isSkippable() && root->nextNode != nullptr)) {
        root = root->nextNode;
    }
    return root;
}

RE_Node* inFront(RE_Seeker* seeker, RE_Node* root) {
    seeker->nextNode = root;
    return seeker;
}

}  // namespace

RE_Node* chooseStartFinder(RE_ParserContext& context, RE_Node* root) {
    RE_Node* const leading = leadingNode(root);
    const bool anchored = dynamic_cast<RE_Start_String*>(leading) != nullptr;
    if (context.facts->hasDynamicNodes || (anchored && root->canSeek(false))) {
        return root;
    }
    if (auto* string = dynamic_cast<RE_String*>(leading)) {
        return inFront(context.make<StringStringSeeker>(*string), root);
    }
    First_Units first;
    const bool allowsEmpty = (context.flags & RE_FLAG_ALLOW_EMPTY) != 0;
    if (!first.gather(root) || (first.mayBeEmpty && allowsEmpty) || first.units->size() > widestUsefulSet) {
        return root;
    }
    return inFront(context.make<StringCharSeeker>(std::move(first.units)), root);
}
