// Reuse and comparison of sets. Equality is decided by the units alone: how a set was written does not
// matter.
#include "regexp/seek/set_pool.h"

#include <algorithm>
#include <utility>

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
    const auto [first, last] = known.equal_range(hash);
    for (auto it = first; it != last; ++it) {
        if (*it->second == *units) {
            return it->second;
        }
    }
    known.emplace(hash, units);
    return units;
}
