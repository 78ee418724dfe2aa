// A view into the default allocator for tests and for hosts with a memory budget. Without a hook the
// allocator pays one relaxed load per call.

#pragma once

#include <cstddef>

#include "host/export.h"

class CORVANE_HOST_EXPORT utAllocationHook {
public:
    virtual ~utAllocationHook();

    // Asked before a block is made or resized; false makes the allocation fail.
    virtual bool allow(size_t bytes) noexcept = 0;
    // Told of each block that came to be and of each that went. A resized block is told of neither way.
    virtual void allocated() noexcept = 0;
    virtual void freed() noexcept = 0;
};

// Installs `hook` for the whole process (null: none) and returns the one before it. The hook is called from
// every thread that allocates and must outlive its installation.
CORVANE_HOST_EXPORT utAllocationHook* utSetAllocationHook(utAllocationHook* hook) noexcept;
