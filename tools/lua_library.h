// The functions that scripts may call: the library of Lua without what reaches outside of the interpreter, and
// with functions of our own in place of those that could run for ever without a poll for interrupts.
#pragma once

struct lua_State;

namespace tool {

// A function of Lua, without arguments and results: gives the state its global functions. Errors (of memory
// alone) are Lua's, so it belongs into a protected call.
int openSafeLibraries(lua_State* state);

}  // namespace tool
