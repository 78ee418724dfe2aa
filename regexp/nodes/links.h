// The links of a node, told to a function. Those of the commonest nodes are known by heart, the others are asked.
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
    if ((node.classes & RE_Asked_Classes::bit<RE_Unit_Test>()) != 0) {
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
        default:
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

/// Whether a match goes on along the link. Bodies, items and helpers are entered and left by the node itself.
inline bool isOnward(RE_Link kind) {
    return kind == RE_Link::next || kind == RE_Link::fail || kind == RE_Link::alternative ||
           kind == RE_Link::done;
}

/// Calls `visit` (RE_Node* target) with each node that matching may go on at from here without going into a body, whether
/// this one has matched or failed: whoever asks what can follow a node asks here, so that no way is forgotten.
template <class Visit>
void forEachWay(RE_Node& node, Visit visit) {
    forEachLink(node, [&visit](RE_Node* target, RE_Link kind) {
        if (target != nullptr && isOnward(kind)) {
            visit(target);
        }
    });
}
