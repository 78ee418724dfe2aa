// Finds literals that no match can do without.
#pragma once

#include "regexp/parser/parser_context.h"
#include "regexp/seek/required_literal.h"

#include <optional>
#include <vector>

/// Finds the text of a node that matches nothing else; nothing for other nodes.
std::optional<RE_Text_Finder> literalOf(const RE_Node* node);

struct RE_Found_Literal {
    const RE_Node* node;
    RE_Required_Literal literal;
};

/// The literals, and choices between literals, that no match can do without, as far as that is easily seen. The rarest
/// comes first.
std::vector<RE_Found_Literal> requiredLiterals(RE_ParserContext& context, RE_Node* root);
