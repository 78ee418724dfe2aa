// Default allocator: the C library's heap behind an optional hook.

#include "host/allocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "host/memory_hook.h"

namespace {

// Constant-initialised, so that allocations made before main find it ready.
std::atomic<utAllocationHook*> installedHook{nullptr};

utAllocationHook* currentHook() noexcept {
    return installedHook.load(std::memory_order_acquire);
}

// A zero size becomes one byte: callers tell failure by null and may not be handed null for success.
size_t atLeastOne(size_t size) noexcept {
    return size == 0 ? 1 : size;
}

void* allocate(size_t size, bool zeroed) noexcept {
    utAllocationHook* hook = currentHook();
    if (hook != nullptr && !hook->allow(size)) return nullptr;
    void* block = zeroed ? std::calloc(atLeastOne(size), 1) : std::malloc(atLeastOne(size));
    if (hook != nullptr && block != nullptr) hook->allocated();
    return block;
}

void* checked(void* block) {
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

}  // namespace

utAllocationHook::~utAllocationHook() = default;

utAllocationHook* utSetAllocationHook(utAllocationHook* hook) noexcept {
    return installedHook.exchange(hook, std::memory_order_acq_rel);
}

void* utMalloc(size_t size) {
    return allocate(size, false);
}

void* utMallocWithCheck(size_t size) {
    return checked(allocate(size, false));
}

void* utCallocWithCheck(size_t count, size_t size) {
    size_t bytes = 0;
    if (__builtin_mul_overflow(count, size, &bytes)) throw std::bad_alloc();
    return checked(allocate(bytes, true));
}

void* utReallocWithCheck(void* block, size_t size) {
    if (block == nullptr) return utMallocWithCheck(size);
    utAllocationHook* hook = currentHook();
    if (hook != nullptr && !hook->allow(size)) throw std::bad_alloc();
    return checked(std::realloc(block, atLeastOne(size)));
}

void utFree(void* block) noexcept {
    if (block == nullptr) return;
    std::free(block);
    if (utAllocationHook* hook = currentHook()) hook->freed();
}
