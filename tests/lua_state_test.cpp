// The interpreter of the tool against scripts that mean ill: each ends, by an error of its own or by the interrupt.
// One that does not end is ended by the time limit of the whole program. And the functions that replace those of
// Lua's library give what those give.
#ifdef CORVANE_HAVE_LUA

#include "tools/lua_state.h"

#include "host/interrupt.h"
#include "tools/interrupt.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

namespace {

// What a script ended with: a text, "error: " and the message, or "interrupted".
std::string run(const std::string& code) {
    tool::LuaState state;
    try {
        return state.call(state.compile("", code), {}).text;
    } catch (const tool::LuaError& error) {
        return std::string("error: ") + error.what();
    } catch (const tool::Interrupted&) {
        return "interrupted";
    }
}

// Raises the flag once the script has had time to get into its loop. How much it had does not matter.
std::string runInterrupted(const std::string& code) {
    std::thread user([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        utInterruptState::SetInterruptPending(true);
    });
    const std::string end = run(code);
    user.join();
    utInterruptState::SetInterruptPending(false);
    return end;
}

constexpr const char* kLiar = "local t = setmetatable({}, {__len = function() return math.maxinteger - 1 end}) ";
// Each access goes through many tables.
constexpr const char* kChain = "local t = {} for i = 1, 1900 do t = setmetatable({}, {__index = t}) end ";

TEST(LuaStates, RefuseWhatNeedsTooMuch) {
    const struct {
        const char* code;
        const char* message;
    } cases[] = {
        {"return ('x'):rep(1 << 30)", "not enough memory"},
        {"return ('x'):rep(1 << 62, 'yy')", "resulting string too large"},
        {"return string.format('%99999d', 1)", "invalid conversion"},
        {"return string.pack('c1000000000', 'x')", "not enough memory"},
        {"return string.byte(('x'):rep(1 << 25), 1, -1)", "string slice too long"},
        {"return utf8.codepoint(('x'):rep(1 << 25), 1, -1)", "string slice too long"},
        {"return table.unpack({}, 1, 1 << 40)", "too many results"},
        {"return table.unpack({}, math.mininteger, math.maxinteger)", "too many results"},
        {"return table.unpack(setmetatable({}, {__len = function() return 1 << 40 end}))", "too many results"},
        {"return table.concat(setmetatable({}, {__len = function() return 1 << 60 end}))",
         "invalid value (at index 1)"},
        {"return table.move({}, math.mininteger, math.maxinteger, 1)", "too many elements"},
        {"local s = 'x' while true do s = s .. s end", "not enough memory"},
        {"local t = {} while true do t = {t} end", "not enough memory"},
        {"local function f() return 1 + f() end return f()", "stack overflow"},
        {"local t = setmetatable({}, {}) getmetatable(t).__index = function(t, k) return t[k + 1] end return t[1]",
         "C stack overflow"},
        {"return ('('):rep(300):find(('('):rep(300))", "too many captures"},
        {"return ('x'):rep(1 << 20):find(('x?'):rep(1 << 20))", "pattern too complex"},
        {"return setmetatable({}, {__gc = function() while true do end end})", "finalizers"},
        {"return load('x')", "global 'load'"},
        {"return string.dump(print)", "field 'dump'"},
        {"return coroutine.wrap(print)", "global 'coroutine'"},
        {"return collectgarbage('stop')", "global 'collectgarbage'"},
    };
    for (const auto& [code, message] : cases) {
        const std::string end = run(code);
        EXPECT_TRUE(end.starts_with("error: ")) << code << "\n" << end;
        EXPECT_NE(end.find(message), std::string::npos) << code << "\n" << end;
    }
}

TEST(LuaStates, EndWithAnInterrupt) {
    const std::string cases[] = {
        "while true do end",
        "while true do pcall(error) end",
        "local function f() return pcall(f) and f() end while true do f() end",
        "return table.move({}, 1, math.maxinteger, 1)",
        "return table.move({}, 1, math.maxinteger - 2, 2)",
        std::string(kLiar) + "return table.insert(t, 1, 'x')",
        std::string(kLiar) + "return table.remove(t, 1)",
        std::string(kLiar) + "getmetatable(t).__index = function() return '' end return table.concat(t)",
        "local t = setmetatable({}, {__len = function() return (1 << 31) - 2 end}) return table.sort(t, rawequal)",
        "local t = setmetatable({}, {__len = function() return (1 << 31) - 2 end})"
        " return table.sort(t, function() return false end)",
        std::string(kChain) + "while true do table.unpack(t, 1, 900000) end",
        "local a, b = ('x'):rep(1 << 24) .. 'a', ('x'):rep(1 << 24) .. 'b' local t = {}"
        " for i = 1, 1 << 16 do t[i] = i % 2 == 0 and a or b end while true do table.sort(t) end",
        "local t = {} for i = 1, 10000 do t[i] = i end for i = 1, 10000 do t[i] = nil end"
        " while true do ('x'):rep(1 << 20):gsub('.', function() return next(t) end) end",
        "local t = setmetatable({}, {__index = table.concat}) for i = 1, 1 << 16 do t[i] = 'x' end"
        " while true do ('x'):rep(1 << 20):gsub('.', t) end",
        "while true do ('x'):rep(1 << 20):gsub('', string.upper) end",
        "while true do pcall(string.rep, 'x', 1 << 27) end",
        "while true do utf8.len(('x'):rep(1 << 20)) end",
    };
    for (const std::string& code : cases) EXPECT_EQ(runInterrupted(code), "interrupted") << code;
}

TEST(LuaStates, RepeatNothingForNothing) {
    EXPECT_EQ(run("return '<' .. string.rep('', 1 << 60) .. (''):rep(1 << 62, '') .. ('ab'):rep(2, '-') .. '>'"),
              "<ab-ab>");
}

// The loops over tables that are ours, on tables that answer for themselves and on plain ones.
TEST(LuaStates, HaveTheTableFunctionsOfTheLibrary) {
    const struct {
        const char* code;
        const char* text;
    } cases[] = {
        {"table.insert(t, 'z')", "a b c d z"},
        {"table.insert(t, 1, 'z')", "z a b c d"},
        {"table.insert(t, 5, 'z')", "a b c d z"},
        {"table.insert(t, 6, 'z')", "error"},
        {"table.insert(t, 0, 'z')", "error"},
        {"table.insert(t)", "error"},
        {"table.insert(t, 1, 'z', 2)", "error"},
        {"table.insert(t, 'one', 'z')", "error"},
        {"table.insert(t, '2', 'z')", "a z b c d"},
        {"t[5] = table.remove(t)", "a b c nil d"},
        {"t[4] = table.remove(t, 1)", "b c d a"},
        {"table.remove(t, 5)", "a b c d"},
        {"table.remove(t, 6)", "error"},
        {"table.remove(t, 0)", "error"},
        {"table.move(t, 1, 3, 2)", "a a b c"},
        {"table.move(t, 2, 4, 1)", "b c d d"},
        {"table.move(t, 3, 2, 1)", "a b c d"},
        {"t = table.move(t, 2, 3, 1, {})", "b c"},
        {"table.move(t, 1, 2, math.maxinteger)", "error"},
        {"table.move(t, 1, 2)", "error"},
        {"t = {table.concat(t, '-', 2, 3), table.concat(t), table.concat(t, '', 3, 2)}", "b-c abcd "},
        {"t = {table.concat(t, '', 4, 5)}", "error"},
        {"t = {table.unpack(t, 2)}", "b c d"},
        {"t = {table.unpack(t, 3, 6)}", "c d"},
        {"t = {table.unpack(t, 3, 2)}", ""},
        {"table.sort(t, function(x, y) return x > y end)", "d c b a"},
        {"t[2] = 'x' table.sort(t)", "a c d x"},
        {"t[2] = {} table.sort(t)", "error"},
        {"table.sort(t, 1)", "error"},
    };
    const char* const tables[] = {"local t = {'a', 'b', 'c', 'd'} ",
                                  "local raw = {'a', 'b', 'c', 'd'} local t = setmetatable({}, {__index = raw,"
                                  " __newindex = raw, __len = function() return #raw end}) "};
    for (const auto& [code, text] : cases) {
        for (const char* table : tables) {
            // Read by the operators alone, with what is nil between.
            const std::string end = run(std::string(table) + code +
                                        " local last = 0 for i = 1, 9 do if t[i] ~= nil then last = i end end"
                                        " local text = '' for i = 1, last do text = text .. (i > 1 and ' ' or '') .."
                                        " tostring(t[i]) end return text");
            EXPECT_EQ(end.substr(0, 5) == "error" ? "error" : end, text) << table << code << "\n" << end;
        }
    }
}

}  // namespace

#endif
