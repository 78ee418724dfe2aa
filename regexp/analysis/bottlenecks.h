// Nodes that every match passes.
#pragma once

#include "regexp/graph/meaning.h"
#include "regexp/nodes/graph_context.h"

#include <vector>

/// Passes the nodes that matching may reach from one node, outside of lookarounds, to `visit`. False where the pattern may
/// be over, and where units are consumed that nobody knows.
template <class Visit>
struct RE_Step_Reader {
    Visit& visit;

    bool go(RE_Node* next, RE_Node* otherwise = nullptr) const {
        for (RE_Node* target : {next, otherwise}) {
            if (target != nullptr) {
                visit(target);
            }
        }
        return true;
    }

    bool operator()(const RE_Meanings::Unknown&) const { return false; }
    bool operator()(const RE_Meanings::Nothing& node) const { return go(node.next); }
    bool operator()(const RE_Meanings::Unit& node) const { return go(node.next, node.otherwise); }
    bool operator()(const RE_Meanings::Text& node) const { return go(node.next); }
    bool operator()(const RE_Meanings::Texts& node) const { return go(node.next); }
    bool operator()(const RE_Meanings::Run& node) const { return go(node.next); }
    bool operator()(const RE_Meanings::Edge& node) const { return go(node.next, node.otherwise); }
    bool operator()(const RE_Meanings::Mark& node) const { return go(node.next); }
    bool operator()(const RE_Meanings::Choice& node) const {
        node.forEach([this](RE_Node* way) { go(way); });
        return true;
    }
    bool operator()(const RE_Meanings::Count_Start& node) const { return go(node.next); }
    bool operator()(const RE_Meanings::Count& node) const { return go(node.body, node.exit); }
    bool operator()(const RE_Meanings::Pass& node) const { return go(node.next, node.exit); }
    bool operator()(const RE_Meanings::Body& node) const {
        return node.atomic != nullptr ? go(node.body, node.next) : go(node.next, node.otherwise);
    }
    bool operator()(const RE_Meanings::Reference&) const { return false; }
    bool operator()(const RE_Meanings::Condition& node) const { return go(node.next, node.otherwise); }
    bool operator()(const RE_Meanings::Host_Call& node) const { return go(node.next); }
    bool operator()(const RE_Meanings::Host_Text&) const { return false; }
    bool operator()(const RE_Meanings::End& node) const { return node.ofBody; }
};

template <class Visit>
bool forEachStep(const RE_Node& node, Visit visit) {
    return visitMeaning(node, RE_Step_Reader<Visit>{visit});
}

/// Keeps those of the nodes that all ways lead through from the root to where `forEachStep` says false. Where no way leads
/// that far all are kept.
void keepBottlenecks(RE_Graph_Context& context, RE_Node* root, RE_Scratch_List<RE_Node*>& nodes);
