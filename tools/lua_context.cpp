// Expressions in Lua: from what the engine says about an expression (its text, its references) to a Lua
// function, and from a call at match time to the call of that function.
//
// An exception thrown here leaves the search or the compiling, which free what they hold; the main program
// prints it. Warnings of dynamic texts are the one output that is made in the middle of a search.
#include "tools/lua_context.h"

#include "tools/convert_text.h"
#include "tools/input.h"
#include "tools/script_host.h"
#include "tools/warning_report.h"

#include <functional>
#include <iostream>

namespace tool {
namespace {

// Of dynamic texts in one run: a loop may compile thousands of them.
constexpr std::size_t mostPrintedWarnings = 20;

// Trouble with an expression, reported with the place of the expression. The message has several lines.
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The text of an argument or a variable, as Lua gets it.
std::string textOf(const RE_Evaluation_IO& io) {
    return toUtf8({io.get_string(), io.get_length()});
}

// As Lua's own program reads a file: without a byte order mark and a first line that is for the shell.
std::string readScript(const std::string& file) {
    std::string code = readBytes(file);
    if (code.starts_with("\xEF\xBB\xBF")) code.erase(0, 3);
    // The line feed stays, so that line numbers in messages are right.
    if (code.starts_with('#')) code.erase(0, code.find('\n'));
    return code;
}

// One interpreter for a pattern and its replacement. The files run first, the code of --lua-after last.
class LuaHost : public ScriptHost {
public:
    explicit LuaHost(const ScriptRequest& request) : after_(request.after) {
        for (const std::string& file : request.files) state_.run(readScript(file), file);
    }
    std::unique_ptr<ConsoleContext> makeContext(const Corvane::regexp::CompileOptions& options,
                                                bool forPattern) override {
        return std::make_unique<LuaContext>(options, state_, forPattern);
    }
    // The same interpreter, so the code sees what the expressions have left.
    void finish() override { state_.run(after_, "--lua-after"); }

private:
    LuaState state_;
    std::string after_;
};

}  // namespace

// In this build expressions can run, if the user allowed them.
std::shared_ptr<ScriptHost> startScripts(const ScriptRequest& request) {
    return request.allowed ? std::make_shared<LuaHost>(request) : nullptr;
}

// The engine calls this once for each expression, and owns the result.
RE_Context* LuaContext::clone() {
    return new LuaExpression(*this, state_, nilAllowed_, text());
}

// While the text itself is compiled, warnings are collected. After that they come from dynamic texts, which
// have nobody else to print them.
void LuaContext::warn(const char16_t* where, RE_Warning warning) {
    if (!isCompiled()) {
        ConsoleContext::warn(where, warning);
    } else if (printed_.size() < mostPrintedWarnings &&
               printed_.emplace(text(), static_cast<unsigned>(warning)).second) {
        std::cerr << "cvregexp: in a dynamic text: "
                  << describeWarning(text(), {static_cast<std::size_t>(where - text().data()), warning});
    }
}

LuaExpression::~LuaExpression() {
    state_.forget(function_);
}

void LuaExpression::set_string(const char16_t* text, std::size_t length) {
    // Pointers into different texts may be compared only in this way. An expression of a dynamic text lies
    // outside of the whole; its place is given as the start then.
    const std::less_equal<const char16_t*> notAfter;
    const bool inside = notAfter(wholeBegin_, text) && notAfter(text + length, wholeBegin_ + whole_.size());
    position_ = inside ? static_cast<std::size_t>(text - wholeBegin_) : 0;
}

// A leading underscore and a digit: no script would use such a name, and no two are equal, as each expression
// has parameters of its own. The engine owns the result, here and below.
RE_Evaluation_IO* LuaExpression::create_unique_var(const char* stem, const RE_Builder_Space::RE_Builder&) {
    return new RE_Evaluation_IO(("_" + std::to_string(++variables_) + "_" + stem).c_str());
}

// The body has the variables in place of the references; a reference becomes a parameter.
void LuaExpression::create_fcn(RE_Evaluation_IO* body, RE_Evaluation_Inputs* variables) {
    RE_Evaluation_IO parameters;
    variables->append_to_fcn_call(&parameters);
    try {
        function_ = state_.compile(textOf(parameters), textOf(*body));
    } catch (const LuaError& error) {
        fail(error.what());
    }
}

// The arguments come in the order of the parameters. All are text; Lua converts numerals by itself.
LuaState::Value LuaExpression::call(RE_Evaluation_Inputs* inputs) {
    std::vector<std::string> arguments;
    for (std::size_t i = 0; i < inputs->get_length(); ++i) arguments.push_back(textOf(*inputs->get_input(i)));
    try {
        return state_.call(function_, arguments);
    } catch (const LuaError& error) {
        fail(error.what());
    }
}

// Nil means that there is no text: in a pattern nothing matches there; in a replacement it is an error.
RE_Evaluation_IO* LuaExpression::evaluate_string(RE_Evaluation_Inputs* inputs) {
    const LuaState::Value value = call(inputs);
    if (!value.hasText) {
        if (nilAllowed_ && value.type == std::string_view("nil")) return nullptr;
        fail(std::string("expression: text is wanted, not ") + value.type);
    }
    const std::u16string text = toUtf16(value.text);
    return new RE_Evaluation_IO(text.data(), text.size());
}

bool LuaExpression::evaluate_bool(RE_Evaluation_Inputs* inputs) {
    return call(inputs).truth;
}

// The engine passes the same script to every call, so the first call compiles it.
void LuaExpression::evaluate_script(RE_Evaluation_IO* script, RE_Evaluation_Inputs* variables,
                                    RE_Evaluation_Inputs* inputs) {
    if (function_ == LUA_NOREF) create_fcn(script, variables);
    call(inputs);
}

void LuaExpression::fail(const std::string& message) const {
    throw ScriptError(describePlace(whole_, position_, "script error", message));
}

}  // namespace tool
