// Measures a syntax tree before its graph is built.
#pragma once

#include "regexp/parser/parser_context.h"
#include "regexp/parser/syntax.h"

/// Fills the measured fields of every item, inner ones first. Items that nest too deeply for the engine are
/// reported (warning 22) and dropped: repetitions with counts or pass guards, and possessive ones, on top of
/// each other.
void measureSyntax(RE_Syntax_Tree& tree, RE_ParserContext& context, const char16_t* text);

/// How a repetition is compiled.
struct RE_Repeat_Plan {
    std::uint64_t minimum;
    std::uint64_t maximum;
    bool guarded;   ///< a pass may consume nothing, and it is judged whether it does
    bool unrolled;  ///< copies of the body in place of a loop
    bool counted;   ///< a loop that needs a count
};
RE_Repeat_Plan planRepeat(const RE_Syntax_Tree& tree, std::uint32_t index, std::size_t inlineThreshold);
