// Counting allocation hook. Counters are atomic because any thread may allocate while it is installed.

#include "host/allocation_counter.h"

utAllocationCounter::utAllocationCounter() noexcept : previous_(utSetAllocationHook(this)) {}

utAllocationCounter::~utAllocationCounter() {
    utSetAllocationHook(previous_);
}

void utAllocationCounter::failAt(size_t n) noexcept {
    requests_ = 0;
    failing_ = n;
}

bool utAllocationCounter::allow(size_t) noexcept {
    return ++requests_ != failing_;
}

void utAllocationCounter::allocated() noexcept {
    ++live_;
}

void utAllocationCounter::freed() noexcept {
    --live_;
}
