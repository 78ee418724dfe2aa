// The links of a node, passed to a function.
//
// Most steps of a compilation are walks, so the links of the commonest nodes are listed here without a
// virtual call.
//
// Trap: the lists must be what `visitLinks` of the classes reports, in the same order. A new link that is
// missing here is a way that no pass sees.
#pragma once

#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/split.h"

/// Calls `visit` (RE_Node*& target, RE_Link kind) with each link, in the order of `RE_Node::visitLinks`.
template <class Visit>
void forEachLink(RE_Node& node, Visit visit) {
    struct Caller : RE_Link_Visitor {
        explicit Caller(Visit& function) : call(function) {}
        void link(RE_Node*& target, RE_Link kind) override { call(target, kind); }
        Visit& call;
    };
    if ((node.classes & RE_Node_Classes::bit<RE_Unit_Test>()) != 0) {
        visit(node.nextNode, RE_Link::next);
        visit(static_cast<RE_Consumable&>(node).failTarget, RE_Link::fail);
        return;
    }
    switch (node.kind) {
        case RE_Node_Kind::end:
        case RE_Node_Kind::string:
        case RE_Node_Kind::literalSet:
        case RE_Node_Kind::startToken:
        case RE_Node_Kind::endToken:
        case RE_Node_Kind::passage:
            visit(node.nextNode, RE_Link::next);
            return;
        case RE_Node_Kind::split:
            visit(node.nextNode, RE_Link::next);
            visit(static_cast<RE_Split&>(node).alternative, RE_Link::alternative);
            return;
        case RE_Node_Kind::run: {
            // The link is of another type: a copy is visited, and put back through the setter, which writes
            // nothing where the visitor has left it as it is.
            RE_Node* item = static_cast<RE_Consume&>(node).item;
            visit(node.nextNode, RE_Link::next);
            visit(item, RE_Link::item);
            static_cast<RE_Consume&>(node).setItem(item);
            return;
        }
        case RE_Node_Kind::dispatch:
            for (RE_Node*& way : static_cast<RE_Dispatch&>(node).ways) {
                visit(way, RE_Link::alternative);
            }
            return;
        case RE_Node_Kind::other:
        case RE_Node_Kind::literal:
        case RE_Node_Kind::foldedLiteral:
        case RE_Node_Kind::range:
        case RE_Node_Kind::namedClass:
        case RE_Node_Kind::unitClass:
        case RE_Node_Kind::dotLine:
        case RE_Node_Kind::matchToken:
        case RE_Node_Kind::lineStart:
        case RE_Node_Kind::lineEnd:
        case RE_Node_Kind::textStart:
        case RE_Node_Kind::textEnd:
        case RE_Node_Kind::glance:
        case RE_Node_Kind::wordStart:
        case RE_Node_Kind::wordEnd:
            break;
    }
    if (auto* const look = nodeAs<RE_Lookaround_Assertion>(&node)) {
        visit(look->nextNode, RE_Link::next);
        visit(look->failTarget, RE_Link::fail);
        visit(look->body, RE_Link::body);
        return;
    }
    Caller caller(visit);
    node.visitLinks(caller);
}

/// Whether a match continues along the link. Bodies, items and helpers are entered and left by the node
/// itself.
inline bool isOnward(RE_Link kind) {
    return kind == RE_Link::next || kind == RE_Link::fail || kind == RE_Link::alternative ||
           kind == RE_Link::done;
}

/// Calls `visit` (RE_Node* target) with each node at which matching may continue from here without entering a
/// body, whether this one has matched or failed. Whoever needs to know what can follow a node uses this, so
/// that no way is forgotten.
template <class Visit>
void forEachWay(RE_Node& node, Visit visit) {
    forEachLink(node, [&visit](RE_Node* target, RE_Link kind) {
        if (target != nullptr && isOnward(kind)) {
            visit(target);
        }
    });
}
