// Finds a literal that no match can do without.
#pragma once

#include "regexp/nodes/node.h"
#include "regexp/seek/required_literal.h"

#include <optional>

/// The text of a node that matches nothing else, or nothing.
std::optional<RE_Required_Literal> literalOf(const RE_Node* node);

/// The rarest of the literals that no match can do without, as far as that is easily seen.
std::optional<RE_Required_Literal> requiredLiteral(RE_Node* root);
