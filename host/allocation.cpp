// Default allocator: the C library's heap behind an optional hook.
//
// Every function reads the hook once and uses that reading throughout, so a block is reported to the hook
// that allowed it even when another thread exchanges the hook meanwhile. The functions keep no state of their
// own beside the hook, and are safe to call from any thread at any time, also before main.

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

// The one place that makes a block. Null when the hook refuses or the heap is exhausted: the callers decide
// whether that is an answer or an exception.
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
    // calloc checks the product too, but the hook has to see the true size before calloc does.
    size_t bytes = 0;
    if (__builtin_mul_overflow(count, size, &bytes)) throw std::bad_alloc();
    return checked(allocate(bytes, true));
}

void* utReallocWithCheck(void* block, size_t size) {
    if (block == nullptr) return utMallocWithCheck(size);
    utAllocationHook* hook = currentHook();
    if (hook != nullptr && !hook->allow(size)) throw std::bad_alloc();
    // A resized block is one block before and after, so neither allocated() nor freed() is called. A size of
    // zero must not reach realloc, which may free the block and return null.
    return checked(std::realloc(block, atLeastOne(size)));
}

void utFree(void* block) noexcept {
    if (block == nullptr) return;
    std::free(block);
    if (utAllocationHook* hook = currentHook()) hook->freed();
}
