// Dynamic expressions: compiled once through the host's context, evaluated for each match.
//
// An expression is host text in which `$1`, `$<name>` and the like are references to parts of the match.
// Each distinct reference becomes a variable of the host's making; the text with the variables' names in
// place of the references is what the host compiles, and the texts of the references are the inputs of each
// call. So text of the subject never becomes part of the source.
//
// An evaluator talks to a clone of the pattern's context, made for it alone: by the clone the host knows
// which expression a call is about. Evaluators are not changed by evaluations, so any number of searches
// may use one at the same time; what the host does with its clone is the host's affair. Exceptions of the
// host pass through, out of constructors as well.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/eval/context.h"
#include "regexp/eval/evaluation_inputs.h"
#include "regexp/eval/evaluation_tokens.h"
#include "regexp/replace/replace.h"

#include <cstddef>
#include <memory>

class RE_ParserContext;

/// What all expressions share: the clone, the compiled text and its references.
class CORVANE_REGEXP_EXPORT RE_Evaluator : public RE_Memory {
public:
    /// `text` is the expression within the text being compiled, so that warnings point to the right place;
    /// `length` counts units. Clones the context, then gives the clone the text.
    RE_Evaluator(RE_ParserContext& parser, const char16_t* text, std::size_t length);
    virtual ~RE_Evaluator();
    RE_Evaluator(const RE_Evaluator&) = delete;
    RE_Evaluator& operator=(const RE_Evaluator&) = delete;

protected:
    std::unique_ptr<RE_Context> context;  ///< the clone
    RE_Replace expression;                ///< read like a replacement
    std::unique_ptr<RE_Evaluation_Tokens> tokens;
};

/// An expression that the host compiles to a function (`RE_Context::create_fcn`), when this is constructed.
class CORVANE_REGEXP_EXPORT RE_Function_Evaluator : public RE_Evaluator {
public:
    RE_Function_Evaluator(RE_ParserContext& parser, const char16_t* text, std::size_t length);
};

/// `${expr}` in replacements and `(??@expr)` in patterns: an expression whose value is a text.
class CORVANE_REGEXP_EXPORT RE_String_Evaluator : public RE_Function_Evaluator {
public:
    using RE_Function_Evaluator::RE_Function_Evaluator;
    /// The value for a match, or null when the evaluation failed. The result belongs to the caller and not
    /// to this object, which other searches may be using.
    std::unique_ptr<RE_Evaluation_IO> evaluate(RE_Results* results) const;
};

/// The condition of `(?(?@expr)yes|no)`.
class CORVANE_REGEXP_EXPORT RE_Bool_Evaluator : public RE_Function_Evaluator {
public:
    using RE_Function_Evaluator::RE_Function_Evaluator;
    bool evaluate(RE_Results* results) const;
};

/// `(?@script)`, run for its effects. It is not compiled to a function: the host gets its text, and the
/// names of its variables, with each call.
class CORVANE_REGEXP_EXPORT RE_Script_Evaluator : public RE_Evaluator {
public:
    RE_Script_Evaluator(RE_ParserContext& parser, const char16_t* text, std::size_t length);
    void evaluate(RE_Results* results) const;

private:
    std::unique_ptr<RE_Evaluation_IO> script;
    std::unique_ptr<RE_Evaluation_Inputs> variables;
};
