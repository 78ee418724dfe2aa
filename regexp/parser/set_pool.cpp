#include "regexp/parser/set_pool.h"

#include <utility>

std::shared_ptr<RE_Unit_Set> RE_Set_Pool::blank() {
    if (spare == nullptr || spare.use_count() > 1) {
        spare = RE_Unit_Set::make();
    } else {
        spare->clear();
    }
    return spare;
}

std::shared_ptr<const RE_Unit_Set> RE_Set_Pool::share(std::shared_ptr<const RE_Unit_Set> units) {
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
