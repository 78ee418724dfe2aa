// Finds literals that no match can do without.
#pragma once

#include "regexp/nodes/graph_context.h"
#include "regexp/nodes/literal_stretches.h"

#include <optional>
#include <vector>

/// Finds the text of a node that matches nothing else; nothing for other nodes.
std::optional<RE_Text_Finder> literalOf(const RE_Node* node);

struct RE_Found_Literal {
    const RE_Node* node;
    RE_Required_Literal literal;

    double likelihood() const { return literal.finder.likelihood(); }
};

/// The literals, and choices between literals, that no match can do without, as far as that is easily seen. The rarest
/// comes first. What stands before them is not known yet.
std::vector<RE_Found_Literal> requiredLiterals(RE_Graph_Context& context, RE_Node* root);
/// Finds out what may stand before one of them. False when the graph is too large for that.
bool surround(RE_Graph_Context& context, RE_Node* root, RE_Found_Literal& found);
