// An allocation hook that counts and, on request, fails one chosen allocation. It installs itself for its
// lifetime, which makes "fail the n-th allocation for every n" a loop of three lines:
//
//     utAllocationCounter counter;
//     counter.failAt(n);
//     EXPECT_THROW(compile(), std::bad_alloc);   // and afterwards counter.live() == 0

#pragma once

#include <atomic>
#include <cstddef>

#include "host/memory_hook.h"

class CORVANE_HOST_EXPORT utAllocationCounter final : public utAllocationHook {
public:
    utAllocationCounter() noexcept;
    ~utAllocationCounter() override;
    utAllocationCounter(const utAllocationCounter&) = delete;
    utAllocationCounter& operator=(const utAllocationCounter&) = delete;

    // The n-th request from now on fails, counted from 1; 0 fails none.
    void failAt(size_t n) noexcept;

    // Requests seen since construction or the last failAt, failed ones included.
    size_t requests() const noexcept { return requests_.load(); }
    // Blocks made less blocks freed since construction. Negative when older blocks were freed.
    std::ptrdiff_t live() const noexcept { return live_.load(); }

    bool allow(size_t bytes) noexcept override;
    void allocated() noexcept override;
    void freed() noexcept override;

private:
    std::atomic<size_t> requests_{0};
    std::atomic<size_t> failing_{0};
    std::atomic<std::ptrdiff_t> live_{0};
    utAllocationHook* previous_;
};
