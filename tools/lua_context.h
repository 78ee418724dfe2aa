// The engine's contexts for texts whose expressions are Lua. Both refer to the interpreter, which has to
// outlive them; they run on the thread that searches, one at a time.
#pragma once

#include "regexp/options/compile_options.h"
#include "tools/console_context.h"
#include "tools/lua_state.h"

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tool {

// The context of a pattern or a replacement. Warnings of texts that are compiled while a search runs are
// printed, each once.
class LuaContext : public ConsoleContext {
public:
    // `nilAllowed`: in patterns, where an expression may say that nothing matches.
    LuaContext(const Corvane::regexp::CompileOptions& compile, LuaState& state, bool nilAllowed)
        : ConsoleContext(compile), state_(state), nilAllowed_(nilAllowed) {}

    bool allow_evaluation() override { return true; }
    // The context of the next expression, which shares the interpreter.
    RE_Context* clone() override;
    void warn(const char16_t* where, RE_Warning warning) override;

private:
    LuaState& state_;
    bool nilAllowed_;
    // The texts and the numbers of the warnings printed so far.
    std::set<std::pair<std::u16string, unsigned>> printed_;
};

// The context of one expression: the engine makes one for each by `clone`. The expression is compiled to a
// function whose parameters are the variables that were made for its references.
class LuaExpression : public RE_Context {
public:
    // `whole` is the text that the expression is part of; it is copied, for messages.
    LuaExpression(const RE_Context& compileContext, LuaState& state, bool nilAllowed,
                  std::u16string_view whole)
        : RE_Context(compileContext),
          state_(state),
          nilAllowed_(nilAllowed),
          wholeBegin_(whole.data()),
          whole_(whole) {}
    ~LuaExpression() override;

    void set_string(const char16_t* text, std::size_t length) override;
    RE_Evaluation_IO* create_unique_var(const char* stem, const RE_Builder_Space::RE_Builder& text) override;
    void create_fcn(RE_Evaluation_IO* body, RE_Evaluation_Inputs* variables) override;
    RE_Evaluation_IO* evaluate_string(RE_Evaluation_Inputs* inputs) override;
    bool evaluate_bool(RE_Evaluation_Inputs* inputs) override;
    void evaluate_script(RE_Evaluation_IO* script, RE_Evaluation_Inputs* variables,
                         RE_Evaluation_Inputs* inputs) override;

private:
    // Calls the function with the texts of the inputs.
    LuaState::Value call(RE_Evaluation_Inputs* inputs);
    // Throws an error that shows where in the whole text the expression is.
    [[noreturn]] void fail(const std::string& message) const;

    LuaState& state_;
    bool nilAllowed_;
    const char16_t* wholeBegin_;  // of the text as it was while it was compiled; only compared with
    std::u16string whole_;
    // Of the expression in the whole text, in code units.
    std::size_t position_ = 0;
    unsigned variables_ = 0;
    // A reference in Lua's registry, released by the destructor.
    int function_ = LUA_NOREF;
};

}  // namespace tool
