// What everyone who makes or rewrites nodes shares while one pattern is compiled: the nodes made so far, their numbers
// and memory, the sets of units, the modes and options in force.
//
// One object serves one compilation, on one thread. Nothing of a search is in here.
//
// Invariant: until `handOver` every node belongs to this object, whether the graph reaches it or not. Passes therefore
// never delete a node and may drop links freely.
#pragma once

#include "regexp/base/compile_meter.h"
#include "regexp/base/flags.h"
#include "regexp/base/memory.h"
#include "regexp/base/scratch_memory.h"
#include "regexp/eval/context.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/graph/node.h"
#include "regexp/graph/pattern_part.h"
#include "regexp/nodes/collection.h"
#include "regexp/nodes/counting_node.h"
#include "regexp/options/compile_options.h"
#include "regexp/seek/set_pool.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

/// Owns every node that it made until the finished graph is handed over, so that a host that throws out of a callback, or
/// an allocation that fails, leaks nothing: the destructor ends whatever has been made. The memory of the nodes is that of
/// `facts->store` and goes with it.
class CORVANE_REGEXP_EXPORT RE_Graph_Context : public RE_Memory {
public:
    /// `host` is not null and outlives this and the compiled pattern. `outerNode` is the node that includes the text being
    /// compiled as a sub-pattern, or null. `patternFlags` are the modes at the beginning. The work is counted by the meter,
    /// which must outlive this; where it is null, nothing bounds it. Throws `std::bad_alloc`.
    RE_Graph_Context(RE_Context* host, RE_Node* outerNode, RE_Flags patternFlags,
                     RE_Compile_Meter* outerMeter = nullptr);
    ~RE_Graph_Context();
    RE_Graph_Context(const RE_Graph_Context&) = delete;
    RE_Graph_Context& operator=(const RE_Graph_Context&) = delete;

    /// Makes a node, in its counting form when the matching is to be profiled.
    template <class Node, class... Arguments>
    Node* make(Arguments&&... arguments) {
        return makeIn<Node>(*this, std::forward<Arguments>(arguments)...);
    }
    /// Whether a node of one of these classes was ever made: without any, a pass that is about them has nothing to do.
    template <class... Classes>
    bool hasMade() const {
        return (madeClasses & (RE_Node_Classes::bit<Classes>() | ...)) != 0;
    }
    std::uint64_t nextNodeId() { return ++nodeCount; }
    /// A number for a walk that marks where it has been by `RE_Node::walk`. Of two such walks one ends before
    /// the other, since both write to the same member. No number is used twice, so nobody clears marks.
    std::uint32_t nextWalk() { return ++walks; }
    /// For passes: `whole` is made for what `part` was made for, too.
    void standsFor(const RE_Node* whole, const RE_Node* part) {
        if (parts != nullptr) {
            parts->add(whole, part);
        }
    }
    /// A memo row for a node that makes choices.
    std::uint32_t nextMemoRow() { return facts->memoRows++; }

    const Corvane::regexp::CompileOptions& options() const { return context->getCompileOptions(); }

    /// The nodes that can be reached from the root, in the order in which a walk meets them first, and marked by it. They
    /// stay as they are until the next call, which takes a walk only when links have changed.
    const RE_Collection::Nodes& nodes(RE_Node* root);
    /// For passes that redirect links and leave nothing skippable, which would have the graph walked anyway.
    void linksChanged() { walkedFrom = nullptr; }
    /// Makes all links lead past nodes that do nothing. Returns the new root.
    RE_Node* leadPastSkippable(RE_Node* root);
    /// Hands the nodes that are reached from the root to the facts and destroys the others. Returns how many
    /// are left. The last thing that is done with this object's nodes; prepares their seeks.
    std::size_t handOver(RE_Node* root);

private:
    RE_Compile_Meter unbounded;  ///< for want of another one

public:
    RE_Compile_Meter& meter;    ///< whatever loops over the pattern or its graph spends from it
    RE_Scratch_Memory scratch;  ///< what compiling takes for itself
    RE_Context* context;
    std::uint64_t nodeCount = 0;
    std::uint32_t walks = 0;
    RE_Class_Bits madeClasses = 0;
    // What the parser may do at once, and what it has seen, for passes that would otherwise look for it.
    bool joinsTexts = false;         ///< runs of literals are strings from the beginning
    bool joinsRuns = false;          ///< loops over one unit are runs from the beginning
    bool renumbers = false;          ///< some nodes are not in the order of their numbers
    bool hasUnitRuns = false;        ///< some nodes are chains of single units by their fail targets
    bool hasLongMatches = false;     ///< a match may have very many units
    bool hasSkippable = true;        ///< some link may lead to a node that does nothing
    RE_Node_Parts* parts = nullptr;  ///< where it is noted what nodes are made for; null when nobody asks
    RE_Node* outer;
    RE_Flags flags;
    std::unique_ptr<RE_Graph_Facts> facts;
    RE_Set_Pool sets{&scratch};

protected:
    /// The only place that makes nodes. `maker` is `*this` as the class that the node's constructor takes.
    template <class Node, class Context, class... Arguments>
    Node* makeIn(Context& maker, Arguments&&... arguments) {
        meter.spendNode();
        made.push_back(nullptr);  // a node whose constructor throws leaves no trace
        Node* node = nullptr;
        if (options().profile()) {
            using Counting = RE_Profile_Node<Node>;
            node = new (facts->store.take(sizeof(Counting)))
                Counting(maker, std::forward<Arguments>(arguments)...);
        } else {
            node = new (facts->store.take(sizeof(Node))) Node(maker, std::forward<Arguments>(arguments)...);
            static_cast<RE_Node*>(node)->kind = RE_Node_Classes::kindOf<Node>();
        }
        static_cast<RE_Node*>(node)->classes = RE_Node_Classes::bitsOf<Node>();
        madeClasses |= RE_Node_Classes::bitsOf<Node>();
        made.back() = node;
        if (parts != nullptr) {
            parts->note(node);
        }
        return node;
    }

private:
    RE_Scratch_List<RE_Node*> made{&scratch};  ///< in this order; null while one is made
    RE_Collection reached{&scratch};
    RE_Node* walkedFrom = nullptr;  ///< the root of what was reached, while that holds
};
