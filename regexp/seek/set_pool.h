// Sets of units that a pattern needs more than once are held once, and large ones that several patterns need, too: they
// have up to 8 KiB.
//
// One pool serves one compilation, on one thread. Sets that it hands out for good are shared with the nodes
// and outlive it; they are immutable from then on and may be read by any number of threads.
#pragma once

#include "regexp/base/scratch_memory.h"
#include "regexp/seek/kernels.h"
#include "regexp/units/unit_set.h"

#include <cstddef>
#include <memory>
#include <utility>

/// Makes sets, reuses those that turned out not to be needed, and finds equal ones. All functions may throw
/// `std::bad_alloc`.
class CORVANE_REGEXP_EXPORT RE_Set_Pool {
public:
    /// `memory` is for the lists of the pool and must outlive it. The sets themselves come from the host.
    explicit RE_Set_Pool(RE_Scratch_Memory* memory) : scans(memory), few(memory), known(memory) {}

    /// An empty set to be filled. If nobody kept the last one that was handed out, it is handed out again.
    /// Trap: a set that is still being filled has to be held by its shared pointer; a plain pointer to it
    /// is overwritten by the next call.
    std::shared_ptr<RE_Unit_Set> blank();
    /// A set of these units or, negated, of all others. The same holds for it. Cheaper than filling a blank
    /// one, as nothing is cleared first.
    template <class Units>
    std::shared_ptr<RE_Unit_Set> copyOf(const Units& units, bool negated = false) {
        if (!isSpareFree()) {
            spare = RE_Unit_Set::make();
        }
        spare->assign(units, negated);
        return spare;
    }
    /// A scan for the units outside of `units`, which must live as long as the pool: scans are found again
    /// by its address. The reference is valid until the next call.
    const RE_Class_Scan& othersThan(const RE_Unit_Set& units);
    /// The first set that was shared and equals this one, so that equal sets of a pattern are one object; of large sets,
    /// those of all patterns. A set that has been shared must not be changed.
    std::shared_ptr<const RE_Unit_Set> share(std::shared_ptr<const RE_Unit_Set> units);

private:
    // Only the pool holds it. Compiling is single-threaded, so the count cannot change meanwhile.
    bool isSpareFree() const { return spare != nullptr && spare.use_count() == 1; }

    using Shared = std::shared_ptr<const RE_Unit_Set>;
    // So many sets are compared one by one, which most patterns never exceed; beyond, a hash of each pays.
    static constexpr std::size_t mostSearched = 16;
    // A pass needs the scans of a few sets in turn. When there are more, all scans are dropped and made
    // again.
    static constexpr std::size_t mostScans = 8;

    RE_Scratch_List<std::pair<const RE_Unit_Set*, RE_Class_Scan>> scans;  ///< the last ones
    RE_Scratch_List<Shared> few;                     ///< the first ones, compared one by one
    RE_Scratch_Multimap<std::size_t, Shared> known;  ///< all, once these are many
    std::shared_ptr<RE_Unit_Set> spare;
};
