// Reuse and comparison of sets. Equality is decided by the units alone: how a set was written does not
// matter.
#include "regexp/seek/set_pool.h"

#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace {

// So many sets of one hash are compared. Hashes of different sets are hardly ever equal, unless somebody has looked for such
// sets: then they are held more than once, and compiling takes no longer for it.
constexpr std::size_t mostAlike = 8;

/// The large sets of all patterns: those of words and letters of all scripts, with a unit more or less, are in many of them.
/// Owns nothing: a set goes with the last pattern that has it.
class Sets_Of_Process {
public:
    /// Never destroyed, as patterns of static storage may be compiled at any time.
    static Sets_Of_Process& get() {
        static Sets_Of_Process& sets = *new Sets_Of_Process;
        return sets;
    }

    std::shared_ptr<const RE_Unit_Set> share(std::shared_ptr<const RE_Unit_Set> units) {
        const std::size_t hash = units->hash();
        const std::scoped_lock held(lock);
        std::weak_ptr<const RE_Unit_Set>* gone = nullptr;
        auto it = known.find(hash);
        for (std::size_t i = 0; i < mostAlike && it != known.end() && it->first == hash; ++i, ++it) {
            const std::shared_ptr<const RE_Unit_Set> other = it->second.lock();
            if (other == nullptr) {
                gone = &it->second;
            } else if (*other == *units) {
                return other;
            }
        }
        // A pattern that is compiled again and again leaves one note of each set.
        if (gone != nullptr) {
            *gone = units;
            return units;
        }
        if (known.size() + refused >= mostKnown) {
            std::erase_if(known, [](const auto& each) { return each.second.expired(); });
            mostKnown = std::max(leastKnown, 2 * known.size());
            refused = 0;
        }
        if (known.size() < mostEver) {
            known.emplace(hash, units);
        } else {
            ++refused;
        }
        return units;
    }

private:
    static constexpr std::size_t leastKnown = 64;
    /// What is noted of a set outlives it for a while: a pattern of very many sets must not leave much behind.
    static constexpr std::size_t mostEver = 2048;

    std::mutex lock;
    std::unordered_multimap<std::size_t, std::weak_ptr<const RE_Unit_Set>> known;
    std::size_t mostKnown = leastKnown;  ///< then those that are gone are forgotten
    std::size_t refused = 0;             ///< since that was done last
};

// Comparing with those of other patterns takes longer than making a small set.
constexpr std::size_t blocksOfLarge = 64;

}  // namespace

std::shared_ptr<RE_Unit_Set> RE_Set_Pool::blank() {
    if (isSpareFree()) {
        spare->clear();
    } else {
        spare = RE_Unit_Set::make();
    }
    return spare;
}

const RE_Class_Scan& RE_Set_Pool::othersThan(const RE_Unit_Set& units) {
    const auto made = std::ranges::find(scans, &units, &decltype(scans)::value_type::first);
    if (made != scans.end()) {
        return made->second;
    }
    if (scans.size() == mostScans) {
        scans.clear();
    }
    return scans.emplace_back(&units, RE_Class_Scan(units, false)).second;
}

std::shared_ptr<const RE_Unit_Set> RE_Set_Pool::share(std::shared_ptr<const RE_Unit_Set> units) {
    if (units->variedBlocks() > blocksOfLarge && units.use_count() > 0) {
        units = Sets_Of_Process::get().share(std::move(units));
    }
    // While the sets are few, `known` is empty and `few` has all of them. From then on `few` only keeps its
    // sets alive.
    if (known.empty()) {
        const auto same = std::ranges::find_if(few, [&](const Shared& other) { return *other == *units; });
        if (same != few.end()) {
            return *same;
        }
        few.push_back(units);
        if (few.size() > mostSearched) {
            for (const Shared& other : few) {
                known.emplace(other->hash(), other);
            }
        }
        return units;
    }
    // An equal hash is no proof of equal sets, so every candidate is compared.
    const std::size_t hash = units->hash();
    auto it = known.find(hash);
    for (std::size_t i = 0; i < mostAlike && it != known.end() && it->first == hash; ++i, ++it) {
        if (*it->second == *units) {
            return it->second;
        }
    }
    known.emplace(hash, units);
    return units;
}
