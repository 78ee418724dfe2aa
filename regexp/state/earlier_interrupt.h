// A request to stop that was made before a call is the host's: it stops nothing, and is there again after the call.
#pragma once

#include "host/interrupt.h"

/// Puts such a request aside while this lives, or until it is handed back.
class RE_Earlier_Interrupt {
public:
    RE_Earlier_Interrupt() = default;
    /// `watches` is false for calls that do not look for requests.
    explicit RE_Earlier_Interrupt(bool watches) { putAside(watches); }
    ~RE_Earlier_Interrupt() { handBack(); }
    RE_Earlier_Interrupt(const RE_Earlier_Interrupt&) = delete;
    RE_Earlier_Interrupt& operator=(const RE_Earlier_Interrupt&) = delete;

    void putAside(bool watches) {
        if (watches && utInterruptState::IsInterruptPending()) {
            wasPending = true;
            utInterruptState::SetInterruptPending(false);
        }
    }
    void handBack() {
        if (wasPending) {
            wasPending = false;
            utInterruptState::SetInterruptPending(true);
        }
    }

private:
    bool wasPending = false;
};
