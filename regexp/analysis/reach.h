// How far an attempt looks ahead, and which units it can tell from the limits of the subject.
//
// A subject that is not known to its end yet can be searched all the same, where what is known decides: an attempt that
// looks at nothing further goes the same way whatever follows. Two bounds are found. One is a number of units. The other
// are barriers, units that the pattern nowhere consumes: no attempt passes one, so none looks past the first of them.
//
// Invariant: the answers are never too small. They follow from what the nodes mean, so they hold for every form of the
// pattern, however it is optimised or run. Looking behind counts as looking ahead: a look-behind's body matches forward,
// and may be held up (by a possessive loop, or a lookahead of its own) by what follows the place where it has to end.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/units/unit_set.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

struct RE_Graph_Facts;

/// Of one compiled pattern, of which nothing is kept. Read-only once made.
class CORVANE_REGEXP_EXPORT RE_Reach : public RE_Memory {
public:
    static constexpr std::uint64_t unbounded = static_cast<std::uint64_t>(-1);

    /// Walks over the whole graph, which is not changed: linear in its size. Exceptions: those of allocation.
    explicit RE_Reach(const RE_Graph_Facts& facts);

    /// An attempt that starts at s looks at no unit at or past s + this, and does not ask whether the subject ends there or
    /// further on. `unbounded` when there is no such number, or it is not known.
    std::uint64_t units() const { return mostUnits; }
    /// Whether no attempt that starts at or before this unit looks past it.
    bool isBarrier(char16_t unit) const { return isKnown && !consumed.contains(unit); }
    /// Whether an attempt may have to see the whole subject: there is no bound, and no unit is a barrier.
    bool needsAll() const { return mostUnits == unbounded && !hasBarriers; }

    /// Of the units of a subject only these are known, which are its first ones. The number of starts, from the first on,
    /// whose attempts go as they would with the whole subject: a search of `known` alone that begins no attempt at or after
    /// it (`latestStart` of `RE_Match_Sequence::find`) has the final answer. Barriers are looked for from `from` on only, so
    /// that a caller who knows more and more looks at each unit once; the greatest answer up to now holds.
    std::size_t finalStarts(std::u16string_view known, std::size_t from = 0) const;

    /// Whether the pattern may tell this unit from a limit of the subject, by consuming it or by a test that holds beside
    /// one of the two only. If not, parts that such units separate may be searched as one subject: each has the matches
    /// that it has by itself, and no match holds such a unit.
    bool tellsFromLimit(char16_t unit) const {
        return !isKnown || consumed.contains(unit) || told.contains(unit);
    }

private:
    std::uint64_t mostUnits = unbounded;
    bool isKnown = false;
    bool hasBarriers = false;
    RE_Unit_Set consumed;  ///< all units that some node may consume, in lookarounds too
    RE_Unit_Set told;      ///< units beside which a test has another answer than beside a limit
};
