// A literal, or one of a few, that every match contains, and what may precede it.
//
// Two uses. As a start finder: from a literal in the text, the starts of matches are found by going back over
// units that may precede it. As a test in between: where no such literal follows any more, no attempt can
// succeed.
//
// Proof that no start is passed over. Let a match start at `s`, at or after `p`, and let its literal be at
// `l`. All units in [s, l) may precede a literal, and they are at least `leastBefore` many. The finder takes
// the first place `f` at or after `p + leastBefore`, so `f` is not past `l`, and all units in [s, f) may
// precede it too, even where `f` is there by accident. So going back from `f` over such units passes `s`,
// unless `s` is less than `leastBefore` in front of `f`: then `s` lies past the stretch of `f` and is found
// with a later one.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/seek/scan.h"
#include "regexp/seek/text_finder.h"
#include "regexp/state/search_info.h"
#include "regexp/units/unit_set.h"

#include <cstdint>
#include <memory>
#include <utility>

/// A literal that every match contains, as `regexp/analysis/required_literal.h` finds it. Read-only once it
/// is made.
struct RE_Required_Literal {
    RE_Text_Finder finder;
    /// Every unit of a match before its first such literal is one of these.
    std::shared_ptr<const RE_Unit_Set> before;
    std::uint64_t leastBefore;  ///< how many there are at least
};

/// Where a match may start, as far as the literal tells: the positions from which it is reached over units
/// that may precede it. Read-only during searches; what a search finds is kept under `row` in the search.
class CORVANE_REGEXP_EXPORT RE_Literal_Stretches : public RE_Memory {
public:
    /// From `begin` to `end`, both included; empty where `end` is before `begin`.
    struct Stretch {
        const char16_t* begin;
        const char16_t* end;  ///< still in it
    };

    /// `memoRow` is a row of its own, for what a search remembers.
    RE_Literal_Stretches(RE_Required_Literal literal, std::uint32_t memoRow)
        : required(std::move(literal)), outside(*required.before, false), row(memoRow) {}

    /// The stretch of positions at or after `p` from which the next literal can be reached; empty where `end`
    /// lies before `begin`. False when there is none further on either. The stretch is kept with the search:
    /// from its later positions the same literal is the next, and nothing is scanned.
    bool from(const char16_t* p, RE_Search_Info& info, Stretch& stretch) const;
    /// The end of the stretch that `p` is in, where the search has kept that one; else null.
    const char16_t* endAround(const char16_t* p, const RE_Search_Info& info) const {
        const RE_Measured_Run* const known = info.measuredRun(row);
        return known != nullptr && known->holds(p) ? known->end : nullptr;
    }
    /// The first position from `p` on at which a match may start, or null.
    const char16_t* nextStart(const char16_t* p, RE_Search_Info& info) const;
    /// The first position that `pick` (stretch) finds in a stretch that is not empty. Null from `pick` sends
    /// on to the next stretch; so a start may be narrowed down by what a match can begin with.
    template <class Pick>
    const char16_t* nextStart(const char16_t* p, RE_Search_Info& info, Pick pick) const;

    RE_Required_Literal required;

private:
    RE_Class_Scan outside;  ///< units that may not precede the literal
    std::uint32_t row;
};

template <class Pick>
const char16_t* RE_Literal_Stretches::nextStart(const char16_t* p, RE_Search_Info& info, Pick pick) const {
    const char16_t* polledAt = p;
    Stretch stretch{};
    while (from(p, info, stretch)) {
        const char16_t* const start = stretch.begin <= stretch.end ? pick(stretch) : nullptr;
        if (start != nullptr || info.wasInterrupted()) {
            return start;
        }
        p = stretch.end + 1;
        if (p >= polledAt + RE_SCAN_POLL_UNITS) {
            polledAt = p;
            if (info.pollScan()) {
                return nullptr;
            }
        }
    }
    return nullptr;
}
