// The host's flag before and after a search, and what happens at a checkpoint.
#include "regexp/state/search_stops.h"

void RE_Search_Stops::takePendingInterrupt() {
    if (utInterruptState::IsInterruptPending()) {
        interruptWasPending = true;
        utInterruptState::SetInterruptPending(false);
    }
}

void RE_Search_Stops::handBackInterrupt() {
    const bool pendingNow = checkInterrupts && utInterruptState::IsInterruptPending();
    if (interruptWasPending && !pendingNow) {
        utInterruptState::SetInterruptPending(true);
    }
    interruptWasPending = false;
}

bool RE_Search_Stops::passCheckpoint() {
    if (wasInterrupted() || pollScan()) {
        return false;
    }
    if (meter.isSpent()) {
        stopped = RE_Search_Outcome::stepsSpent;
        return false;
    }
    meter.renew();
    return meter.step();
}
