// What happens at a checkpoint.
#include "regexp/state/search_stops.h"

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
