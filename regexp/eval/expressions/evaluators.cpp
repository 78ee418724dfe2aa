// The order of the host's calls when an expression is compiled: clone, text, variables, function. Hosts and
// tests rely on it.
#include "regexp/eval/expressions/evaluators.h"

#include "regexp/eval/host_expressions.h"
#include "regexp/parser/parser_context.h"

namespace {

/// While this lives, no expressions are compiled: they do not nest. Restores what was before, exceptions
/// included.
class Suppress_Evaluation {
public:
    explicit Suppress_Evaluation(RE_ParserContext& parserContext)
        : parser(parserContext), before(parserContext.evaluationSuppressed) {
        parser.evaluationSuppressed = true;
    }
    ~Suppress_Evaluation() { parser.evaluationSuppressed = before; }
    Suppress_Evaluation(const Suppress_Evaluation&) = delete;
    Suppress_Evaluation& operator=(const Suppress_Evaluation&) = delete;

private:
    RE_ParserContext& parser;
    bool before;
};

RE_Replace readExpression(RE_ParserContext& parser, const char16_t* text, std::size_t length) {
    const Suppress_Evaluation suppressed(parser);
    return RE_Replace(&parser, text, length);
}

}  // namespace

RE_Evaluator::RE_Evaluator(RE_ParserContext& parser, const char16_t* text, std::size_t length)
    : expression(readExpression(parser, text, length)) {
    context.reset(parser.context->clone());
    if (context == nullptr) {
        context.reset(new RE_Context(parser.context->getCompileOptions()));
    }
    context->set_string(text, length);
    tokens.reset(expression.create_tokens());
}

RE_Evaluator::~RE_Evaluator() = default;

RE_Function_Evaluator::RE_Function_Evaluator(RE_ParserContext& parser, const char16_t* text,
                                             std::size_t length)
    : RE_Evaluator(parser, text, length) {
    tokens->create_variables(context.get());
    const std::unique_ptr<RE_Evaluation_IO> body(expression.build_fcn(tokens.get()));
    context->create_fcn(body.get(), tokens->get_variables());
}

// The inputs are a list of this call, so that evaluations on several threads share the clone only.
std::unique_ptr<RE_Evaluation_IO> RE_String_Evaluator::evaluate(RE_Results* results) const {
    const std::unique_ptr<RE_Evaluation_Inputs> inputs = tokens->create_inputs(results);
    return std::unique_ptr<RE_Evaluation_IO>(context->evaluate_string(inputs.get()));
}

bool RE_Bool_Evaluator::evaluate(RE_Results* results) const {
    const std::unique_ptr<RE_Evaluation_Inputs> inputs = tokens->create_inputs(results);
    return context->evaluate_bool(inputs.get());
}

RE_Script_Evaluator::RE_Script_Evaluator(RE_ParserContext& parser, const char16_t* text, std::size_t length)
    : RE_Evaluator(parser, text, length) {
    tokens->create_variables(context.get());
    variables.reset(new RE_Evaluation_Inputs(tokens->get_variables()));
    script.reset(expression.build_fcn(tokens.get()));
}

void RE_Script_Evaluator::evaluate(RE_Results* results) const {
    const std::unique_ptr<RE_Evaluation_Inputs> inputs = tokens->create_inputs(results);
    context->evaluate_script(script.get(), variables.get(), inputs.get());
}

std::shared_ptr<const RE_Script_Evaluator> compileScript(RE_ParserContext& parser, const char16_t* text,
                                                         std::size_t length) {
    return std::shared_ptr<const RE_Script_Evaluator>(new RE_Script_Evaluator(parser, text, length));
}

std::shared_ptr<const RE_String_Evaluator> compileExpression(RE_ParserContext& parser, const char16_t* text,
                                                             std::size_t length) {
    return std::shared_ptr<const RE_String_Evaluator>(new RE_String_Evaluator(parser, text, length));
}

std::shared_ptr<const RE_Bool_Evaluator> compileCondition(RE_ParserContext& parser, const char16_t* text,
                                                          std::size_t length) {
    return std::shared_ptr<const RE_Bool_Evaluator>(new RE_Bool_Evaluator(parser, text, length));
}

std::shared_ptr<const RE_Replace> compileDynamicText(RE_ParserContext& parser, const char16_t* text,
                                                     std::size_t length) {
    return std::shared_ptr<const RE_Replace>(new RE_Replace(&parser, text, length));
}

void evaluate(const RE_Script_Evaluator& script, RE_Results* match) {
    script.evaluate(match);
}

std::unique_ptr<RE_Evaluation_IO> evaluate(const RE_String_Evaluator& expression, RE_Results* match) {
    return expression.evaluate(match);
}

bool evaluate(const RE_Bool_Evaluator& condition, RE_Results* match) {
    return condition.evaluate(match);
}

bool expand(const RE_Replace& text, RE_Evaluation_IO* out, RE_Results* match) {
    return text.expand(out, match);
}
