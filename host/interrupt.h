// The process-wide interrupt flag. A user interface raises it from any thread or from a signal handler; a
// long search polls it and gives up.
//
// There is one flag for the process, not one per search: raising it stops every search that allows
// interrupts. It stays up when they have stopped, and a program that goes on afterwards lowers it itself. A
// search sets aside a flag that was raised before it began, and restores it at its end.

#pragma once

#include "host/export.h"

struct CORVANE_HOST_EXPORT utInterruptState {
    // Both are safe in a signal handler: they neither lock nor allocate.
    static bool IsInterruptPending() noexcept;
    static void SetInterruptPending(bool pending) noexcept;
};
