// A Lua interpreter without the parts of its library that reach outside of it.
//
// Everything that can fail inside Lua runs in protected calls, so no error of a script, nor a lack of memory,
// takes the program down; and a hook that is called for every call and every thousand instructions ends scripts
// when the user interrupts. What runs long between two calls (a `string.find` that tries out everything, the
// collection of weak tables) is not asked: then the program ends a little later, as by a second interrupt.
#pragma once

#include <lua.hpp>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// What Lua says about an error of a script, with the place in the script.
class LuaError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class LuaState {
public:
    LuaState();
    LuaState(const LuaState&) = delete;
    LuaState& operator=(const LuaState&) = delete;

    // Runs a chunk; `name` is what messages call it. LuaError when it fails, Interrupted when the user ends
    // it.
    void run(std::string_view code, const std::string& name);

    // A function of these parameters, separated by commas. The body is an expression, whose value is
    // returned, or else statements. The number is valid until `forget`.
    int compile(std::string_view parameters, std::string_view body);
    void forget(int function) noexcept;

    // A value that a script returned. Strings and numbers have text; `type` is the name of the value's type.
    struct Value {
        bool truth;
        bool hasText;
        std::string text;
        const char* type;
    };
    Value call(int function, const std::vector<std::string>& arguments);

private:
    struct Close {
        void operator()(lua_State* state) const { lua_close(state); }
    };

    // Leaves a function on the stack.
    void load(const std::string& code, const char* name);
    [[noreturn]] void fail();

    // Declared before the state, which frees its blocks through it.
    std::size_t used_ = 0;  // bytes
    std::unique_ptr<lua_State, Close> state_;
};

}  // namespace tool
