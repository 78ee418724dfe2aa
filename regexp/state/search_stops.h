// When a search is broken off: by the host, which is polled now and then, or by the limit of its steps.
#pragma once

#include "host/interrupt.h"
#include "regexp/base/export.h"
#include "regexp/base/search_limits.h"
#include "regexp/seek/scan.h"
#include "regexp/state/earlier_interrupt.h"
#include "regexp/state/search_subject.h"

#include <cstddef>

class CORVANE_REGEXP_EXPORT RE_Search_Stops : public RE_Search_Subject, public RE_Scan_Monitor {
public:
    /// A request to stop that came before the search is put aside, and handed back once the search is over.
    void putInterruptAside() { earlierInterrupt.putAside(checkInterrupts); }
    void handInterruptBack() { earlierInterrupt.handBack(); }

    /// Counts one step; true when the host asks to stop. The host is consulted on every 2048th step only.
    bool pollInterrupt();
    /// For scans of many units between two steps: consults the host and the limits at once.
    bool pollScan() final;
    /// Has polls look at the stop token and the deadline of these limits, too. Null for none; not owned.
    void heed(const RE_Search_Limits* searchLimits) { limits = searchLimits; }
    /// Looks at these alone. True when the search is to stop.
    bool pollLimits() {
        if (limits != nullptr && !wasInterrupted()) {
            stopped = limits->askOutside();
        }
        return wasInterrupted();
    }
    /// Whether the search is being broken off, by the host or by a limit.
    bool wasInterrupted() const { return stopped != RE_Search_Outcome::noMatch; }
    /// Why it is; `noMatch` while it is not.
    RE_Search_Outcome stopReason() const { return stopped; }
    /// Accounts for one node visit. False when the search is to stop. At a checkpoint the host is consulted
    /// too, so that patterns that never turn back can be interrupted.
    bool takeStep() { return meter.step() || passCheckpoint(); }

    bool checkInterrupts;

protected:
    RE_Search_Stops(const char16_t* subject, std::size_t length, RE_Seek_Table* table, bool pollInterrupts)
        : RE_Search_Subject(subject, length, table), checkInterrupts(pollInterrupts) {}
    ~RE_Search_Stops() = default;

    RE_Search_Outcome stopped = RE_Search_Outcome::noMatch;
    const RE_Search_Limits* limits = nullptr;  ///< with a stop token or a deadline; else null

private:
    bool passCheckpoint();

    RE_Earlier_Interrupt earlierInterrupt;
};

inline bool RE_Search_Stops::pollScan() {
    if (checkInterrupts && utInterruptState::IsInterruptPending()) {
        stopped = RE_Search_Outcome::interrupted;
    }
    return pollLimits();
}

inline bool RE_Search_Stops::pollInterrupt() {
    if (steps % 2048 == 0 && pollScan()) {
        return true;
    }
    ++steps;
    return false;
}
