// The interrupt flag: one lock-free atomic. It publishes no other data, so relaxed order is enough.

#include "host/interrupt.h"

#include <atomic>

namespace {

std::atomic<bool> interruptPending{false};
static_assert(std::atomic<bool>::is_always_lock_free, "the flag is set from signal handlers");

}  // namespace

bool utInterruptState::IsInterruptPending() noexcept {
    return interruptPending.load(std::memory_order_relaxed);
}

void utInterruptState::SetInterruptPending(bool pending) noexcept {
    interruptPending.store(pending, std::memory_order_relaxed);
}
