// Trap: what loops in C for as long as a script says must not stay, as no interrupt is seen within it. Sizes alone
// are no bound: a table may lie about its length by `__len`, and an `__index` may make each access long. So loops
// over tables are written in Lua, where the hook is called; those of the library remain for tables without a
// metatable, as far as memory is their bound. What strings cost is bounded by memory, except for patterns.
#include "tools/lua_library.h"

#include <lua.hpp>

#include <initializer_list>
#include <iostream>
#include <string_view>

namespace tool {
namespace {

// Takes the place of functions of the libraries. What they call is kept in locals: scripts may change globals.
constexpr std::string_view polledFunctions = R"(
local concat, insert, rep, sort, unpack = table.concat, table.insert, string.rep, table.sort, table.unpack
local error, getmetatable, select, tonumber, tostring, type = error, getmetatable, select, tonumber, tostring, type
local tointeger, ult, mostInteger = math.tointeger, math.ult, math.maxinteger

local function integer(value, what)
    return tointeger(value) or error(what .. " is no integer but " .. tostring(value), 3)
end

-- An empty text has nothing that would fill the memory.
function string.rep(text, count, separator)
    if text == "" and (separator == nil or separator == "") and tonumber(count) then return "" end
    return rep(text, count, separator)
end

local function move(from, first, last, to, target)
    first, last, to = integer(first, "start"), integer(last, "end"), integer(to, "target")
    if target == nil then target = from end
    if last < first then return target end
    if first <= 0 and last >= mostInteger + first then error("too many elements to move", 2) end
    if to > mostInteger - (last - first) then error("destination wraps around", 2) end
    if to > last or to <= first or target ~= from then
        for i = 0, last - first do target[to + i] = from[first + i] end
    else
        for i = last - first, 0, -1 do target[to + i] = from[first + i] end
    end
    return target
end
table.move = move

function table.insert(list, ...)
    if select("#", ...) ~= 2 then return insert(list, ...) end
    local place, value = ...
    place = integer(place, "position")
    local last = integer(#list, "length") + 1
    if not ult(place - 1, last) then error("position out of bounds", 2) end
    for i = last, place + 1, -1 do list[i] = list[i - 1] end
    list[place] = value
end

function table.remove(list, place)
    local last = integer(#list, "length")
    place = place == nil and last or integer(place, "position")
    if place ~= last and ult(last, place - 1) then error("position out of bounds", 2) end
    local value = list[place]
    for i = place, last - 1 do list[i] = list[i + 1] end
    list[place < last and last or place] = nil
    return value
end

function table.concat(list, separator, first, last)
    if getmetatable(list) == nil then return concat(list, separator, first, last) end
    first = first == nil and 1 or integer(first, "start")
    last = integer(last == nil and #list or last, "end")
    local items, count = {}, 0
    for i = first, last do
        local item = list[i]
        if type(item) ~= "string" and type(item) ~= "number" then
            error("invalid value (at index " .. i .. ") in table for 'concat'", 2)
        end
        count = count + 1
        items[count] = item
    end
    return concat(items, separator)
end

function table.unpack(list, first, last)
    if getmetatable(list) == nil then return unpack(list, first, last) end
    first = first == nil and 1 or integer(first, "start")
    last = integer(last == nil and #list or last, "end")
    if last < first then return end
    -- More than the stack takes, which the library finds out by itself.
    if ult(1 << 24, last - first) then error("too many results to unpack", 2) end
    return unpack(move(list, first, last, 1, {}), 1, last - first + 1)
end

local function less(a, b) return a < b end

-- Comparing by a function lets each comparison be polled: one of long texts takes long by itself.
function table.sort(list, before)
    return sort(list, before == nil and less or before)
end
)";

// Lua's setmetatable without finalizers: hooks do not run in those, so nothing would end a long one.
int setMetatable(lua_State* state) {
    luaL_checktype(state, 1, LUA_TTABLE);
    luaL_argexpected(state, lua_isnil(state, 2) || lua_istable(state, 2), 2, "nil or table");
    lua_settop(state, 2);
    if (lua_istable(state, 2)) {
        lua_pushliteral(state, "__gc");
        if (lua_rawget(state, 2) != LUA_TNIL) return luaL_error(state, "finalizers (__gc) are not allowed");
        lua_pop(state, 1);
    }
    lua_pushvalue(state, lua_upvalueindex(1));
    lua_insert(state, 1);
    lua_call(state, 2, 1);
    return 1;
}

// To the program's own stream, which keeps the order with the rest of the output.
int print(lua_State* state) {
    // As Lua's own print: tabs between, texts by __tostring.
    const int count = lua_gettop(state);
    for (int i = 1; i <= count; ++i) {
        std::size_t length = 0;
        const char* const text = luaL_tolstring(state, i, &length);
        if (i > 1) std::cout.put('\t');
        std::cout.write(text, static_cast<std::streamsize>(length));
        lua_pop(state, 1);
    }
    std::cout.put('\n');
    return 0;
}

// From the table on top of the stack.
void removeFields(lua_State* state, std::initializer_list<const char*> names) {
    for (const char* name : names) {
        lua_pushnil(state);
        lua_setfield(state, -2, name);
    }
}

// The functions of the os library that only look at the clock; the others start programs and remove files.
void openClock(lua_State* state) {
    luaL_requiref(state, LUA_OSLIBNAME, luaopen_os, 0);
    lua_newtable(state);
    for (const char* name : {"clock", "date", "difftime", "time"}) {
        lua_getfield(state, -2, name);
        lua_setfield(state, -2, name);
    }
    lua_setglobal(state, LUA_OSLIBNAME);
    lua_pop(state, 1);
}

}  // namespace

// Without files, programs, modules, other chunks of code and the debug library, so nothing here reaches outside of
// the interpreter; without coroutines, since each has a hook of its own.
int openSafeLibraries(lua_State* state) {
    const luaL_Reg libraries[] = {{LUA_GNAME, luaopen_base},
                                  {LUA_STRLIBNAME, luaopen_string},
                                  {LUA_TABLIBNAME, luaopen_table},
                                  {LUA_MATHLIBNAME, luaopen_math},
                                  {LUA_UTF8LIBNAME, luaopen_utf8}};
    for (const luaL_Reg& library : libraries) {
        luaL_requiref(state, library.name, library.func, 1);
        lua_pop(state, 1);
    }
    openClock(state);
    // What the base library offers besides: running files and texts, and driving the collector.
    lua_pushglobaltable(state);
    removeFields(state, {"collectgarbage", "dofile", "load", "loadfile"});
    lua_getfield(state, -1, "setmetatable");
    lua_pushcclosure(state, setMetatable, 1);
    lua_setfield(state, -2, "setmetatable");
    lua_pop(state, 1);
    lua_getglobal(state, LUA_STRLIBNAME);
    removeFields(state, {"dump"});
    lua_pop(state, 1);
    lua_register(state, "print", print);
    if (luaL_loadbufferx(state, polledFunctions.data(), polledFunctions.size(), "=library", "t") != LUA_OK) {
        return lua_error(state);
    }
    lua_call(state, 0, 0);
    return 0;
}

}  // namespace tool
