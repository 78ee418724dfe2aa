// The default host's array value: a single number or truth value. Hosts with real arrays bring their own type
// of this name and an option context that converts it. The engine itself knows the name alone and passes
// pointers through, so it must never read a member of this type.

#pragma once

#include <cstddef>

#include "host/allocation.h"

struct cxArray {
    // A truth value keeps its kind, so that a host can show `true` where the option is a switch.
    explicit cxArray(size_t value) : number(value), logical(false) {}
    explicit cxArray(bool value) : number(value ? 1 : 0), logical(true) {}

    // Arrays change hands between the engine and the host, so they come from the host's allocator.
    static void* operator new(size_t size) { return utMallocWithCheck(size); }
    static void operator delete(void* block) noexcept { utFree(block); }

    size_t number;
    bool logical;  // true when made from a truth value; number is then 0 or 1
};
