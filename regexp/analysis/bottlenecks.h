// Nodes that every match passes, elsewhere called dominators, and the reader of steps by which they are
// found.
//
// A literal that is a bottleneck is in the text of every match, which start finders rely on. Whatever is not
// certain counts as a way past the node: the answer may then miss a bottleneck, but names none that is none.
#pragma once

#include "regexp/graph/meaning.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/graph_context.h"

#include <vector>

/// Passes the nodes that matching may reach from one node, outside of lookarounds, to `visit`. False where
/// the pattern may be over, and where units are consumed that cannot be known: nothing can be said about what
/// follows.
///
/// An overestimate is safe here, a missing way is not. So a condition leads both ways and a counter to both
/// its body and its exit, whatever the count may be.
template <class Visit>
struct RE_Step_Reader {
    Visit& visit;

    /// Null is no way on and is left out.
    bool go(RE_Node* next, RE_Node* otherwise = nullptr) const {
        for (RE_Node* target : {next, otherwise}) {
            if (target != nullptr) {
                visit(target);
            }
        }
        return true;
    }

    // A node that was made by hand may consume anything.
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
    // The body of an atomic group consumes, so it is gone through; its end has no link to what follows, which
    // is therefore reached from the group itself. That way past the body does not exist, but allowing it is
    // safe. The body of a lookaround consumes nothing that is part of the match; that of a lookahead with which the pattern
    // ends is gone through all the same, as it follows every match, and ends the pattern.
    bool operator()(const RE_Meanings::Body& node) const {
        if (node.atomic != nullptr) {
            return go(node.body, node.next);
        }
        return node.look->isLast ? go(node.body) : go(node.next, node.otherwise);
    }
    // The text of a token is known to the search only, and so are the texts that the host makes.
    bool operator()(const RE_Meanings::Reference&) const { return false; }
    bool operator()(const RE_Meanings::Condition& node) const { return go(node.next, node.otherwise); }
    bool operator()(const RE_Meanings::Host_Call& node) const { return go(node.next); }
    bool operator()(const RE_Meanings::Host_Text&) const { return false; }
    // After the end of a body matching continues where its group leads, which the group has passed on
    // already.
    bool operator()(const RE_Meanings::End& node) const { return node.ofBody && !node.ofLast; }
};

/// `RE_Step_Reader` for one node. Does not go on from the nodes that it passes to `visit`.
template <class Visit>
bool forEachStep(const RE_Node& node, Visit visit) {
    return visitMeaning(node, RE_Step_Reader<Visit>{visit});
}

/// Keeps those of the nodes that all ways lead through from the root to where `forEachStep` says false. Where
/// no way leads that far all are kept: then nothing matches. The order of the rest stays. Linear in the nodes
/// that are reached, and in the length of one way for each of `nodes`.
void keepBottlenecks(RE_Graph_Context& context, RE_Node* root, RE_Scratch_List<RE_Node*>& nodes);
