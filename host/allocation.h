// The host's allocator. Every engine object and every buffer that changes hands comes from here, so that a
// host can count, limit or replace the engine's memory in one place, and a receiver frees what it is given
// with utFree.

#pragma once

#include <cstddef>

#include "host/export.h"

// Null when there is no memory. A size of zero gives a block of its own like any other.
CORVANE_HOST_EXPORT void* utMalloc(size_t size);

// The checked functions throw std::bad_alloc instead of returning null.
CORVANE_HOST_EXPORT void* utMallocWithCheck(size_t size);
// Zeroed memory for `count` items of `size` bytes each; a product past the address range also throws.
CORVANE_HOST_EXPORT void* utCallocWithCheck(size_t count, size_t size);
// Like realloc; a null block is a fresh allocation. When it throws, the old block is still the caller's.
CORVANE_HOST_EXPORT void* utReallocWithCheck(void* block, size_t size);

// Null is allowed.
CORVANE_HOST_EXPORT void utFree(void* block) noexcept;
