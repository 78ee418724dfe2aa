// Counting allocation hook. Counters are atomic because any thread may allocate while it is installed; each
// is exact by itself, but two of them read one after the other may straddle an allocation of another thread.

#include "host/allocation_counter.h"

utAllocationCounter::utAllocationCounter() noexcept : previous_(utSetAllocationHook(this)) {}

// Restores what was installed before, so counters nest like scopes. They must not be destroyed out of order:
// the outer one would reinstall a hook that is gone.
utAllocationCounter::~utAllocationCounter() {
    utSetAllocationHook(previous_);
}

void utAllocationCounter::failAt(size_t n) noexcept {
    requests_ = 0;
    failing_ = n;
}

bool utAllocationCounter::allow(size_t) noexcept {
    // Requests are counted from 1, so a failing_ of 0 fails none.
    return ++requests_ != failing_;
}

void utAllocationCounter::allocated() noexcept {
    ++live_;
}

void utAllocationCounter::freed() noexcept {
    --live_;
}
