// Measures a syntax tree before its graph is built: how many units each item consumes, how many nodes it
// compiles to, and what it depends on.
//
// The measures decide how a repetition is compiled (`planRepeat`), bound look-behinds, and give the least
// length of a match. They are computed between reading and building, as they depend on which tokens are
// referenced anywhere.
#pragma once

#include "regexp/parser/parser_context.h"
#include "regexp/parser/syntax.h"

/// Fills the measured fields of every item, inner ones first, in linear time and without recursion. Called
/// once for a tree. `text` is the pattern, for the places of warnings.
///
/// Repetitions nested too deeply for the engine are reported (warning 22) and dropped: those with counts or
/// pass guards, and possessive ones, on top of each other. After this, every item that is left can be
/// built.
void measureSyntax(RE_Syntax_Tree& tree, RE_ParserContext& context, const char16_t* text);

/// How a repetition is compiled: by copies of the body (`unrolled`), as a loop with a counter (`counted`),
/// or else as a plain loop or choice. At most one of the two is set, and copies are never made of a guarded
/// body.
struct RE_Repeat_Plan {
    std::uint64_t minimum;
    std::uint64_t maximum;
    bool guarded;   ///< a pass may consume nothing, and it is judged whether it does
    bool unrolled;  ///< copies of the body in place of a loop
    bool counted;   ///< a loop that needs a count
};
/// The plan for the repeat at `index`, whose body is measured. A function of the tree and the threshold (of
/// the compile options, in nodes; 0 unrolls nothing), so measuring and building get the same plan without
/// storing it. The bounds may be lower than those written, where further passes could not change anything.
RE_Repeat_Plan planRepeat(const RE_Syntax_Tree& tree, std::uint32_t index, std::size_t inlineThreshold);
