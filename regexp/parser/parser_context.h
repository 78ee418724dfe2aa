// What the stages of compiling one pattern share: the host's context, the modes, the nodes made so far, and
// the facts about the graph.
//
// One object serves one compilation, on one thread, from the first unit read to the finished graph; the
// grammar, the graph builder, the passes and the constructors of nodes all hold a reference to it. Nothing
// of a search is in here.
//
// Invariant: until `handOver` every node belongs to this object, whether the graph reaches it or not.
// Passes therefore never delete a node and may drop links freely.
#pragma once

#include "regexp/eval/context.h"
#include "regexp/flags.h"
#include "regexp/graph_facts.h"
#include "regexp/inspect/profile_node.h"
#include "regexp/memory.h"
#include "regexp/nodes/collection.h"
#include "regexp/nodes/node.h"
#include "regexp/parser/set_pool.h"
#include "regexp/scratch_memory.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class RE_Node;

/// Owns every node that it made until the finished graph is handed over, so that a host that throws out of
/// a callback, or an allocation that fails, leaks nothing: the destructor ends whatever has been made. The
/// memory of the nodes is that of `facts->store` and goes with it.
class CORVANE_REGEXP_EXPORT RE_ParserContext : public RE_Memory {
public:
    /// `host` is not null and outlives this and the compiled pattern. `outerNode` is the node that includes
    /// the text being compiled as a sub-pattern, or null. `patternFlags` are the modes at the beginning.
    /// Throws `std::bad_alloc`.
    RE_ParserContext(RE_Context* host, RE_Node* outerNode, RE_Flags patternFlags);
    ~RE_ParserContext();
    RE_ParserContext(const RE_ParserContext&) = delete;
    RE_ParserContext& operator=(const RE_ParserContext&) = delete;

    /// Makes a node, in its counting form when matching is to be profiled. Nodes come from here only: it
    /// registers the node for destruction, notes its class for `hasMade`, and sets the kind by which the
    /// match loop runs it directly. A counting node keeps the default kind, so that the loop calls its
    /// virtual functions and it can count. The pointer stays valid until the node is found unreachable at
    /// the end. Throws what the constructor throws, and `std::bad_alloc`.
    template <class Node, class... Arguments>
    Node* make(Arguments&&... arguments) {
        // The place in the list comes first: a node that is made has to be registered without a chance to
        // fail.
        made.push_back(nullptr);
        Node* node = nullptr;
        if (options().profile()) {
            using Counting = RE_Profile_Node<Node>;
            node = new (facts->store.take(sizeof(Counting)))
                Counting(*this, std::forward<Arguments>(arguments)...);
        } else {
            node = new (facts->store.take(sizeof(Node))) Node(*this, std::forward<Arguments>(arguments)...);
            static_cast<RE_Node*>(node)->kind = kindOfNode<Node>;
        }
        static_cast<RE_Node*>(node)->classes = RE_Asked_Classes::bitsOf<Node>();
        madeClasses |= RE_Asked_Classes::bitsOf<Node>();
        made.back() = node;
        return node;
    }
    /// Whether a node of one of these classes was ever made, reachable or not. Without any, a pass about
    /// them has nothing to do and need not walk the graph.
    template <class... Classes>
    bool hasMade() const {
        return (madeClasses & (RE_Asked_Classes::bit<Classes>() | ...)) != 0;
    }
    /// The number of the next node, from 1. Numbers order and label nodes; they need not be dense.
    std::uint64_t nextNodeId() { return ++nodeCount; }
    /// A number for a walk that marks where it has been by `RE_Node::walk`. Of two such walks one must end
    /// before the other begins, as a node has one mark.
    std::uint32_t nextWalk() { return ++walks; }
    /// A memo row for a node that makes choices. Rows are never reused, as a row names one state per
    /// position.
    std::uint32_t nextMemoRow() { return facts->memoRows++; }

    /// `where` points into the text being compiled. The host may throw.
    void warn(const char16_t* where, RE_Warning warning) { context->warn(where, warning); }
    /// Whether an expression may be compiled at this point: by the modes, by what surrounds it, and by the
    /// host, which is consulted last and each time, as its answer may change.
    bool mayEvaluate() const {
        return (flags & RE_FLAG_EVALUATE) != 0 && !evaluationSuppressed && context->allow_evaluation();
    }
    const Corvane::regexp::CompileOptions& options() const { return context->getCompileOptions(); }

    /// The nodes that can be reached from the root, each once, in the order in which a walk meets them
    /// first. The list remains valid until the next call of this or of `leadPastSkippable`. It is walked
    /// anew only where `linksChanged` or another root demands it: a pass that changes links and does not
    /// say so works on stale nodes later.
    const RE_Collection::Nodes& nodes(RE_Node* root);
    /// For passes that redirect links and do not end with `removeNullNodes`, which walks the graph anyway.
    void linksChanged() { walkedFrom = nullptr; }
    /// Makes all links lead past nodes that do nothing. Returns the new root. Linear in the graph.
    RE_Node* leadPastSkippable(RE_Node* root);
    /// Hands the nodes that are reached from the root to the facts and destroys the others. Returns how
    /// many are left. Called once, last: links to nodes that the graph does not reach dangle afterwards,
    /// and nothing can be made any more.
    std::size_t handOver(RE_Node* root);

    RE_Scratch_Memory scratch;  ///< what compiling takes for itself
    RE_Context* context;
    std::uint64_t nodeCount = 0;  ///< the last number given to a node
    std::uint32_t walks = 0;
    RE_Class_Bits madeClasses = 0;
    // The first two are settings. The others are known of the graph without walking it: whoever makes one
    // true sets it, and a pass that has nothing to do returns at once.
    bool joinsTexts = false;      ///< runs of literals are strings from the beginning
    bool joinsRuns = false;       ///< loops over one unit are runs from the beginning
    bool renumbers = false;       ///< some nodes are not in the order of their numbers
    bool hasUnitRuns = false;     ///< some nodes are chains of single units by their fail targets
    bool hasLongMatches = false;  ///< a match may have very many units
    bool hasSkippable = true;     ///< some link may lead to a node that does nothing
    RE_Node* outer;               ///< includes the text being compiled; null for a pattern of its own
    RE_Flags flags;  ///< modes in force where the grammar reads; those of the beginning afterwards
    std::unique_ptr<RE_Graph_Facts> facts;
    RE_Set_Pool sets{&scratch};
    /// Token numbers (slots, from 0) of each name. Equal names keep the order in which their groups were
    /// read.
    std::multimap<std::u16string, std::size_t> tokenNames;
    /// Set while the text of an expression is read: expressions do not nest.
    bool evaluationSuppressed = false;
    /// Names that the replacement texts read so far refer to; each use adds one. References by number are
    /// in the facts.
    std::vector<std::u16string> referencedNames;
    bool refersToSurroundings = false;  ///< to the text before, in or after the match

private:
    RE_Scratch_List<RE_Node*> made{&scratch};  ///< in this order; null while one is made
    RE_Collection reached{&scratch};
    RE_Node* walkedFrom = nullptr;  ///< the root of what was reached, while that holds
};
