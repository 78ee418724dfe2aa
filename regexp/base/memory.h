// Where every engine object gets its memory: the host's allocator, so that a host can count and limit it.
//
// Classes derive from `RE_Memory`, containers use `RE_Allocator`. Both are without state: the account that
// counts (if one is open on the thread) is found by `memory_account.h`. Names and scratch of the parser and
// the passes are standard library objects of their own.
//
// Traps: the account counts sizes when a block is released as well as when it is taken. A block from
// `reAllocate` must be released by `reRelease` with the same size, so a class that is deleted through a base
// needs a virtual destructor. What is taken by `utMalloc` directly is not counted, and released by `utFree`.
#pragma once

#include "host/allocation.h"
#include "regexp/base/export.h"
#include "regexp/base/memory_account.h"

#include <cstddef>
#include <memory>
#include <new>

/// Base of every engine class. Plain `new` goes through the host's checked allocation, which throws or
/// reports by itself; the `std::nothrow` form returns null when the host has no memory left. Arrays are not
/// counted by accounts, as `delete[]` does not say how large they were.
class CORVANE_REGEXP_EXPORT RE_Memory {
public:
    static void* operator new(std::size_t size) { return reAllocate(size); }
    static void* operator new[](std::size_t size) { return utMallocWithCheck(size); }
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
        return reTryAllocate(size);
    }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block, std::size_t size) noexcept { reRelease(block, size); }
    static void operator delete[](void* block) noexcept { utFree(block); }
    static void operator delete(void* block, const std::nothrow_t&) noexcept { utFree(block); }
    static void operator delete(void*, void*) noexcept {}
};

/// Standard allocator over the host's checked allocation, for the engine's containers.
template <class T>
struct RE_Allocator {
    using value_type = T;

    RE_Allocator() noexcept = default;
    template <class U>
    RE_Allocator(const RE_Allocator<U>&) noexcept {}

    /// Throws what the host's checked allocation throws, and `RE_Ceiling_Reached`.
    T* allocate(std::size_t count) {
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        return static_cast<T*>(reAllocate(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) noexcept { reRelease(block, count * sizeof(T)); }

    template <class U>
    bool operator==(const RE_Allocator<U>&) const noexcept {
        return true;
    }
};

/// Frees a block that the host has allocated, without telling an account.
struct RE_Free_Block {
    void operator()(void* block) const noexcept { utFree(block); }
};

/// A block of plain units from the host's allocator that is freed when it goes out of scope.
template <class Unit>
using RE_Host_Block = std::unique_ptr<Unit[], RE_Free_Block>;
