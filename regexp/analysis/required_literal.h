// Finds literals that no match can do without, and what may precede them.
//
// Two steps, as the second is expensive: the literals are found first, with how common they are, and only for
// those that a start finder or the search wants to seek is it found out what may precede them.
#pragma once

#include "regexp/nodes/graph_context.h"
#include "regexp/nodes/literal_stretches.h"

#include <optional>
#include <vector>

/// Finds the text of a node that matches nothing else; nothing for other nodes.
std::optional<RE_Text_Finder> literalOf(const RE_Node* node);

/// A literal with its node. `literal.before` is null until `surround` has been called for it.
struct RE_Found_Literal {
    const RE_Node* node;
    RE_Required_Literal literal;
    bool isChoice = false;  ///< not one literal, but those that a choice leads to

    double likelihood() const { return literal.finder.likelihood(); }
};

/// The literals, and choices between literals, that no match can do without, as far as that is easily seen.
/// The rarest comes first. What precedes them is not known yet. Looks at a bounded number of nodes for
/// literals; whether these are required takes walks over the graph.
std::vector<RE_Found_Literal> requiredLiterals(RE_Graph_Context& context, RE_Node* root);
/// Finds out what may precede one of them: every unit that a match can have before it, and how many at least.
/// False when the graph is too large for that; `found` is then as it was. The literal must be a bottleneck of
/// the graph.
bool surround(RE_Graph_Context& context, RE_Node* root, RE_Found_Literal& found);
