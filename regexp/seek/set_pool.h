// Sets of units that a pattern names more than once are held once: each takes 8 KiB.
#pragma once

#include "regexp/base/scratch_memory.h"
#include "regexp/seek/kernels.h"
#include "regexp/units/unit_set.h"

#include <cstddef>
#include <memory>
#include <utility>

class CORVANE_REGEXP_EXPORT RE_Set_Pool {
public:
    explicit RE_Set_Pool(RE_Scratch_Memory* memory) : scans(memory), few(memory), known(memory) {}

    /// An empty set. One that was not kept by whom it was given to is given again.
    std::shared_ptr<RE_Unit_Set> blank();
    /// A set of units like these, or of all the others.
    template <class Units>
    std::shared_ptr<RE_Unit_Set> copyOf(const Units& units, bool negated = false) {
        if (!isSpareFree()) {
            spare = RE_Unit_Set::make(RE_Unit_Set::Unset());
        }
        spare->assign(units, negated);
        return spare;
    }
    /// A scan for the units outside of a set that lives as long as this.
    const RE_Class_Scan& othersThan(const RE_Unit_Set& units);
    /// The set equal to this one that was given first.
    std::shared_ptr<const RE_Unit_Set> share(std::shared_ptr<const RE_Unit_Set> units);

private:
    bool isSpareFree() const { return spare != nullptr && spare.use_count() == 1; }

    using Shared = std::shared_ptr<const RE_Unit_Set>;
    static constexpr std::size_t mostSearched = 16;
    static constexpr std::size_t mostScans = 8;

    RE_Scratch_List<std::pair<const RE_Unit_Set*, RE_Class_Scan>> scans;  ///< the last ones
    RE_Scratch_List<Shared> few;                     ///< the first ones, compared one by one
    RE_Scratch_Multimap<std::size_t, Shared> known;  ///< all, once these are many
    std::shared_ptr<RE_Unit_Set> spare;
};
