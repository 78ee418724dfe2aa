// Lua behind protected calls. Lua reports errors by longjmp, which skips destructors. So the functions that
// run inside Lua hold no object that needs one, and everything that may raise an error is called through
// lua_pcall.
//
// The stack of Lua is empty between the member functions; `fail` empties it after an error.
#include "tools/lua_state.h"

#include "tools/interrupt.h"
#include "tools/lua_library.h"

#include <cstdlib>
#include <optional>

namespace tool {
namespace {

// Of all values of the scripts together. Beyond it the allocation fails and Lua raises an error.
constexpr std::size_t mostMemory = std::size_t{256} << 20;
// Some microseconds of a script: an interrupt is seen at once, and polling costs nothing that shows.
constexpr int instructionsPerPoll = 1000;

// Lua's allocator: frees, makes or resizes a block, and keeps the account. Trap: without an old block
// `oldSize` is no size but the kind of object that the block will be.
void* allocate(void* user, void* block, std::size_t oldSize, std::size_t newSize) {
    std::size_t& used = *static_cast<std::size_t*>(user);
    const std::size_t before = block != nullptr ? oldSize : 0;
    // Lua frees by resizing to nothing, and expects null.
    if (newSize == 0) {
        std::free(block);
        used -= before;
        return nullptr;
    }
    if (newSize > before && newSize - before > mostMemory - used) return nullptr;
    void* const moved = std::realloc(block, newSize);
    if (moved != nullptr) used = used - before + newSize;
    return moved;
}

// A hook of Lua's. Calls are polled besides instructions: functions of the library call each other (a comparison
// for `table.sort`, say) without an instruction in between. Scripts can catch errors; so from the first interrupt
// on every call and instruction raises one, and no script continues.
void endWhenInterrupted(lua_State* state, lua_Debug*) {
    if (!interruptPending()) return;
    // From the next instruction on: the error below may be caught by the script.
    lua_sethook(state, endWhenInterrupted, LUA_MASKCALL | LUA_MASKCOUNT, 1);
    luaL_error(state, "interrupted");
}

// Handler of protected calls: turns an error that is no text into one, with the place where a script raised
// it.
int describeError(lua_State* state) {
    if (lua_type(state, 1) == LUA_TSTRING) return 1;
    lua_pushliteral(state, "");
    lua_Debug caller;
    // Level 0 is this function, level 1 what raised the error, which may be a function of the library.
    for (int level = 1; lua_getstack(state, level, &caller) != 0; ++level) {
        lua_getinfo(state, "Sl", &caller);
        if (caller.currentline > 0) {
            lua_pushfstring(state, "%s:%d: ", caller.short_src, caller.currentline);
            break;
        }
    }
    if (luaL_getmetafield(state, 1, "__tostring") != LUA_TNIL) {
        luaL_tolstring(state, 1, nullptr);
        lua_remove(state, -2);
    } else {
        lua_pushfstring(state, "an error of type %s", luaL_typename(state, 1));
    }
    lua_concat(state, lua_gettop(state) - 1);
    return 1;
}

// What callProtected needs, passed as a pointer because arguments of Lua are values of Lua.
struct Call {
    int function;
    const std::vector<std::string>* arguments;
};

// Runs protected, so nothing here may need a destructor. Leaves the value and, if it has one, its text; the
// text is made from a copy, as lua_tolstring changes the value that it converts.
int callProtected(lua_State* state) {
    const Call& call = *static_cast<const Call*>(lua_touserdata(state, 1));
    const int count = static_cast<int>(call.arguments->size());
    // The arguments, and three places more: for the function, the value and its text.
    luaL_checkstack(state, count + 3, "too many arguments");
    lua_rawgeti(state, LUA_REGISTRYINDEX, call.function);
    for (int i = 0; i < count; ++i) {
        const std::string& argument = (*call.arguments)[static_cast<std::size_t>(i)];
        lua_pushlstring(state, argument.data(), argument.size());
    }
    lua_call(state, count, 1);
    lua_pushvalue(state, -1);
    lua_tolstring(state, -1, nullptr);
    return 2;
}

// A text that Lua reads unit by unit, so that it is known how far the reader got.
struct Source {
    const char* next;
    const char* end;
};

const char* readUnit(lua_State*, void* user, std::size_t* size) {
    Source& source = *static_cast<Source*>(user);
    *size = source.next == source.end ? 0 : 1;
    return *size == 0 ? nullptr : source.next++;
}

// Leaves a function or an error. Returns how many units of the code are left after an error.
std::optional<std::ptrdiff_t> loadExpression(lua_State* state, const std::string& code) {
    Source source{code.data(), code.data() + code.size()};
    if (lua_load(state, readUnit, &source, "=expression", "t") == LUA_OK) return std::nullopt;
    return source.end - source.next;
}

// Takes the function on the stack into the registry. A call of its own, since it allocates and may fail.
int keepFunction(lua_State* state) {
    lua_pushinteger(state, luaL_ref(state, LUA_REGISTRYINDEX));
    return 1;
}

}  // namespace

// The hook comes last: nothing of the set-up is worth interrupting.
LuaState::LuaState() : state_(lua_newstate(allocate, &used_)) {
    if (state_ == nullptr) throw std::bad_alloc();
    lua_pushcfunction(state_.get(), openSafeLibraries);
    if (lua_pcall(state_.get(), 0, 0, 0) != LUA_OK) fail();
    lua_sethook(state_.get(), endWhenInterrupted, LUA_MASKCALL | LUA_MASKCOUNT, instructionsPerPoll);
}

// Throws the error on top of the stack. An interrupt shows as an error of a script too, and is told apart
// here.
void LuaState::fail() {
    if (interruptPending()) throw Interrupted();
    std::size_t length = 0;
    const bool isText = lua_type(state_.get(), -1) == LUA_TSTRING;
    const char* const text = isText ? lua_tolstring(state_.get(), -1, &length) : nullptr;
    // Copied before the stack is emptied, which lets Lua collect the text.
    std::string message = isText ? std::string(text, length) : std::string("an error that is no text");
    lua_settop(state_.get(), 0);
    throw LuaError(message);
}

// "t": text only. Precompiled code is refused, as nothing verifies it.
void LuaState::load(const std::string& code, const char* name) {
    if (luaL_loadbufferx(state_.get(), code.data(), code.size(), name, "t") != LUA_OK) fail();
}

// "@": the name is that of a file, and messages show it as one.
void LuaState::run(std::string_view code, const std::string& name) {
    const InterruptGrace grace;
    lua_pushcfunction(state_.get(), describeError);
    load(std::string(code), ("@" + name).c_str());
    if (lua_pcall(state_.get(), 0, 0, -2) != LUA_OK) fail();
    lua_pop(state_.get(), 1);
}

// Reads the body as an expression first and, failing that, as statements. If both fail, the error that was
// met later in the text is the one shown: it belongs to the reading that was meant.
int LuaState::compile(std::string_view parameters, std::string_view body) {
    // The parameters become locals that are set from the arguments of the chunk.
    const std::string head = parameters.empty() ? "" : "local " + std::string(parameters) + " = ... ";
    // A line feed ends a comment at the end of the body.
    const std::string code = std::string(body) + (body.find("--") != std::string_view::npos ? "\n" : "");
    lua_State* const state = state_.get();
    lua_pushcfunction(state, keepFunction);
    if (const auto left = loadExpression(state, head + "return " + code)) {
        if (const auto leftOfStatements = loadExpression(state, head + code)) {
            if (*left <= *leftOfStatements) lua_pop(state, 1);
            fail();
        }
        lua_remove(state, -2);
    }
    if (lua_pcall(state, 1, 1, 0) != LUA_OK) fail();
    const int function = static_cast<int>(lua_tointeger(state, -1));
    lua_pop(state, 1);
    return function;
}

// Unreferencing a number that is none (LUA_NOREF) is allowed.
void LuaState::forget(int function) noexcept {
    luaL_unref(state_.get(), LUA_REGISTRYINDEX, function);
}

// Two results come back: the value, and its text or nil.
LuaState::Value LuaState::call(int function, const std::vector<std::string>& arguments) {
    const InterruptGrace grace;
    Call call{function, &arguments};
    lua_State* const state = state_.get();
    lua_pushcfunction(state, describeError);
    lua_pushcfunction(state, callProtected);
    lua_pushlightuserdata(state, &call);
    if (lua_pcall(state, 1, 2, -3) != LUA_OK) fail();
    // The name of a type is a constant of the library; the text has to be copied before the stack is popped.
    Value value{
        lua_toboolean(state, -2) != 0, lua_type(state, -1) == LUA_TSTRING, {}, luaL_typename(state, -2)};
    if (value.hasText) {
        std::size_t length = 0;
        const char* const text = lua_tolstring(state, -1, &length);
        value.text.assign(text, length);
    }
    lua_pop(state, 3);
    return value;
}

}  // namespace tool
