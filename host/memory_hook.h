// A view into the default allocator for tests and for hosts with a memory budget. Without a hook the
// allocator pays one atomic load per call.
//
// A hook must not allocate through host/allocation.h: it would be called again from within itself.

#pragma once

#include <cstddef>

#include "host/export.h"

class CORVANE_HOST_EXPORT utAllocationHook {
public:
    virtual ~utAllocationHook();

    // Called before a block is made or resized; false makes the allocation fail. `bytes` is the requested
    // size, for a resized block its new one.
    virtual bool allow(size_t bytes) noexcept = 0;
    // Called once for each block that was made and for each that was freed. A resized block is reported by
    // neither.
    virtual void allocated() noexcept = 0;
    virtual void freed() noexcept = 0;
};

// Installs `hook` for the whole process (null: none) and returns the one before it. The hook is called from
// every thread that allocates and must outlive its installation.
CORVANE_HOST_EXPORT utAllocationHook* utSetAllocationHook(utAllocationHook* hook) noexcept;
