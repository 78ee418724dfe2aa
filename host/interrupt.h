// The process-wide interrupt flag. A user interface raises it from any thread or from a signal handler; a
// long search polls it and gives up.

#pragma once

#include "host/export.h"

struct CORVANE_HOST_EXPORT utInterruptState {
    static bool IsInterruptPending() noexcept;
    static void SetInterruptPending(bool pending) noexcept;
};
