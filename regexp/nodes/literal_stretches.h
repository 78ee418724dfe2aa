// A literal, or one of a few, that every match holds somewhere, and what may precede it.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/state/search_info.h"
#include "regexp/seek/scan.h"
#include "regexp/seek/text_finder.h"
#include "regexp/units/unit_set.h"

#include <cstdint>
#include <memory>
#include <utility>

struct RE_Required_Literal {
    RE_Text_Finder finder;
    /// Every unit of a match before its first such literal is one of these.
    std::shared_ptr<const RE_Unit_Set> before;
    std::uint64_t leastBefore;  ///< how many there are at least
};

/// Where a match may start, as far as one literal tells that every match holds: from there it is reached over units that
/// may stand before it.
class CORVANE_REGEXP_EXPORT RE_Literal_Stretches : public RE_Memory {
public:
    struct Stretch {
        const char16_t* begin;
        const char16_t* end;  ///< still in it
    };

    /// `memoRow` is a row of its own, for what a search remembers.
    RE_Literal_Stretches(RE_Required_Literal literal, std::uint32_t memoRow)
        : required(std::move(literal)), outside(*required.before, false), row(memoRow) {}

    /// The positions from `p` on from which the next literal can be reached, perhaps none: then `end` comes before `begin`.
    /// False when there are none behind them either. They are remembered: from the later ones the same literal is the next.
    bool from(const char16_t* p, RE_Search_Info& info, Stretch& stretch) const;
    /// The first position from `p` on at which a match may start, or null.
    const char16_t* nextStart(const char16_t* p, RE_Search_Info& info) const;
    /// The first that `pick` (stretch) finds in a stretch that is not empty; null from it sends on to the next one.
    template <class Pick>
    const char16_t* nextStart(const char16_t* p, RE_Search_Info& info, Pick pick) const;

    RE_Required_Literal required;

private:
    RE_Class_Scan outside;  ///< units that may not stand before the literal
    std::uint32_t row;
};

template <class Pick>
const char16_t* RE_Literal_Stretches::nextStart(const char16_t* p, RE_Search_Info& info, Pick pick) const {
    const char16_t* asked = p;  // for interrupts
    Stretch stretch{};
    while (from(p, info, stretch)) {
        const char16_t* const start = stretch.begin <= stretch.end ? pick(stretch) : nullptr;
        if (start != nullptr || info.wasInterrupted()) {
            return start;
        }
        p = stretch.end + 1;
        if (p >= asked + RE_SCAN_POLL_UNITS) {
            asked = p;
            if (info.pollScan()) {
                return nullptr;
            }
        }
    }
    return nullptr;
}
