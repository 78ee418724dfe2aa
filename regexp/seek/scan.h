// Scans of many units, in both directions. They ask the host now and then whether to stop; a scan that was stopped
// finds nothing.
#pragma once

#include "regexp/search_info.h"

#include <algorithm>
#include <cstddef>

/// How many units are looked at between two questions to the host.
inline constexpr std::size_t RE_SCAN_POLL_UNITS = 0x10000;

/// First position in [p, end) at which `holds`, or null.
template <class Test>
const char16_t* scanForward(const char16_t* p, const char16_t* end, RE_Search_Info& info, Test holds) {
    while (p < end) {
        const char16_t* const stop =
            p + std::min<std::size_t>(static_cast<std::size_t>(end - p), RE_SCAN_POLL_UNITS);
        for (; p < stop; ++p) {
            if (holds(p)) {
                return p;
            }
        }
        if (info.pollScan()) {
            return nullptr;
        }
    }
    return nullptr;
}

/// Last position in [first, first + count) at which `holds`, or null.
template <class Test>
const char16_t* scanBackward(const char16_t* first, std::size_t count, RE_Search_Info& info, Test holds) {
    while (count > 0) {
        const std::size_t stop = count - std::min(count, RE_SCAN_POLL_UNITS);
        for (; count > stop; --count) {
            if (holds(first + count - 1)) {
                return first + count - 1;
            }
        }
        if (info.pollScan()) {
            return nullptr;
        }
    }
    return nullptr;
}
