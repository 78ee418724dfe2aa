// Makes the nodes of single-unit atoms.
#pragma once

#include "regexp/nodes/units.h"
#include "regexp/parser/parser_context.h"
#include "regexp/parser/syntax.h"

/// A literal unit under these modes: under ignore case a unit that has case becomes its folding variant.
RE_Consumable* makeLiteral(RE_ParserContext& context, char16_t unit, RE_Flags flags);
/// A range, whose class follows from the case of the units in it. Equal bounds make a literal.
RE_Consumable* makeRange(RE_ParserContext& context, char16_t low, char16_t high, RE_Flags flags);
/// The node of a syntax item that consumes one unit.
RE_Consumable* makeUnitNode(RE_ParserContext& context, const RE_Syntax_Tree& tree, std::uint32_t index);
