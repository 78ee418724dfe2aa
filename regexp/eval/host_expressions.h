// The host's expressions as patterns and replacements hold them.
//
// The evaluators read an expression as a replacement text, and replacements and patterns hold evaluators. Who only holds
// or runs an expression therefore sees no more of it than these functions, which are defined beside the evaluators.
#pragma once

#include <cstddef>
#include <memory>

class RE_Bool_Evaluator;
class RE_Evaluation_IO;
class RE_ParserContext;
class RE_Replace;
class RE_Results;
class RE_Script_Evaluator;
class RE_String_Evaluator;

// Each compiles `length` units at `text`, which lie within the text being compiled, so that warnings point to the right
// place. Exceptions thrown by the host pass through.
std::shared_ptr<const RE_Script_Evaluator> compileScript(RE_ParserContext& parser, const char16_t* text,
                                                         std::size_t length);
std::shared_ptr<const RE_String_Evaluator> compileExpression(RE_ParserContext& parser, const char16_t* text,
                                                             std::size_t length);
std::shared_ptr<const RE_Bool_Evaluator> compileCondition(RE_ParserContext& parser, const char16_t* text,
                                                          std::size_t length);
std::shared_ptr<const RE_Replace> compileDynamicText(RE_ParserContext& parser, const char16_t* text,
                                                     std::size_t length);

void evaluate(const RE_Script_Evaluator& script, RE_Results* match);
/// Null when the evaluation failed.
std::unique_ptr<RE_Evaluation_IO> evaluate(const RE_String_Evaluator& expression, RE_Results* match);
bool evaluate(const RE_Bool_Evaluator& condition, RE_Results* match);
/// False when an expression in the text yields nothing.
bool expand(const RE_Replace& text, RE_Evaluation_IO* out, RE_Results* match);
