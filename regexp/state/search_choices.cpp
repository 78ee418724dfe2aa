// Choices of a search: asking the automaton before they are left, and taking them up again.
#include "regexp/state/search_info.h"

bool RE_Search_Info::inquire() {
    const bool goesOn = inquiry.goesOn(*this);
    if (!goesOn) {
        resetForStart(matchStart);
    }
    return goesOn;
}

RE_Backtrack_Record* RE_Search_Info::popChoice() {
    while (backtrack.top >= backtrack.base) {
        const std::size_t slot = static_cast<std::size_t>(backtrack.top--);
        if (pollInterrupt()) {
            return nullptr;
        }
        if (!countChoice()) {
            return nullptr;
        }
        countTowardsMemo();
        RE_Backtrack_Record* record = &backtrack.records[slot];
        undoTo(backtrack.marks[slot].trailHeight);
        if (tokens != nullptr) {
            tokens->count = record->savedTokens;
        }
        if (!record->node->isCounter) {
            return record;
        }
        record->node->onBacktrack(*this);
        if (record->node->alternativeNode() != nullptr) {
            return record;
        }
    }
    return nullptr;
}
