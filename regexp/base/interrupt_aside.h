// The host's interrupt flag while something runs that polls it: a request that was made before stops nothing, and is handed
// back afterwards.
#pragma once

#include "host/interrupt.h"

class RE_Interrupt_Aside {
public:
    explicit RE_Interrupt_Aside(bool polls) : wasPending(polls && utInterruptState::IsInterruptPending()) {
        if (wasPending) {
            utInterruptState::SetInterruptPending(false);
        }
    }
    ~RE_Interrupt_Aside() {
        if (wasPending) {
            utInterruptState::SetInterruptPending(true);
        }
    }
    RE_Interrupt_Aside(const RE_Interrupt_Aside&) = delete;
    RE_Interrupt_Aside& operator=(const RE_Interrupt_Aside&) = delete;

private:
    bool wasPending;
};
