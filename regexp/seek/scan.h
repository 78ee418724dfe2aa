// Scans of many units, in both directions, cut into blocks so that the host is polled in between.
//
// A scan that the host has stopped finds nothing. Whoever concludes something from "nothing found" (remembers
// it, or skips starts) must look at `wasInterrupted` first, or at what `pollScan` has said.
#pragma once

#include <algorithm>
#include <cstddef>

/// How many units are scanned between two polls of the host: some microseconds for a vector scan, so that the
/// poll costs nothing, and still a prompt answer to an interrupt.
inline constexpr std::size_t RE_SCAN_POLL_UNITS = 0x10000;

/// Decides whether a long scan may continue. A search is the monitor of its own scans.
class RE_Scan_Monitor {
public:
    /// Consults the host at once; true when the scan is to stop.
    virtual bool pollScan() = 0;

protected:
    ~RE_Scan_Monitor() = default;
};

template <class Test>
const char16_t* firstWhere(const char16_t* p, const char16_t* end, Test holds) {
    while (p < end && !holds(p)) {
        ++p;
    }
    return p;
}

template <class Test>
const char16_t* lastWhere(const char16_t* p, const char16_t* end, Test holds) {
    while (end > p) {
        if (holds(--end)) {
            return end;
        }
    }
    return nullptr;
}

/// Runs `find` (p, end) -> first position that counts, or end, over [p, end) block by block. Null when there
/// is none.
template <class Find>
const char16_t* scanForward(const char16_t* p, const char16_t* end, RE_Scan_Monitor& monitor, Find find) {
    while (p < end) {
        const char16_t* const stop =
            p + std::min<std::size_t>(static_cast<std::size_t>(end - p), RE_SCAN_POLL_UNITS);
        const char16_t* const found = find(p, stop);
        if (found != stop) {
            return found;
        }
        p = stop;
        if (monitor.pollScan()) {
            return nullptr;
        }
    }
    return nullptr;
}

/// Runs `find` (p, end) -> last position that counts, or null, over [first, end) from its end on, block by
/// block.
template <class Find>
const char16_t* scanBackward(const char16_t* first, const char16_t* end, RE_Scan_Monitor& monitor,
                             Find find) {
    while (first < end) {
        const char16_t* const from =
            end - std::min<std::size_t>(static_cast<std::size_t>(end - first), RE_SCAN_POLL_UNITS);
        if (const char16_t* const found = find(from, end)) {
            return found;
        }
        end = from;
        if (monitor.pollScan()) {
            return nullptr;
        }
    }
    return nullptr;
}
