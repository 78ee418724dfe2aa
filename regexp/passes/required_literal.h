// Finds a literal that no match can do without.
#pragma once

#include "regexp/parser/parser_context.h"
#include "regexp/seek/required_literal.h"

#include <optional>

/// Finds the text of a node that matches nothing else; nothing for other nodes.
std::optional<RE_Text_Finder> literalOf(const RE_Node* node);

/// The rarest of the literals, and choices between literals, that no match can do without, as far as that is easily seen.
std::optional<RE_Required_Literal> requiredLiteral(RE_ParserContext& context, RE_Node* root);
