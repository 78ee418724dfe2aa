// Sets of units that a pattern names more than once are held once: each takes 8 KiB.
#pragma once

#include "regexp/unit_set.h"

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <unordered_map>
#include <vector>

class RE_Set_Pool {
public:
    explicit RE_Set_Pool(std::pmr::memory_resource* memory) : few(memory), known(memory) {}

    /// An empty set. One that was not kept by whom it was given to is given again.
    std::shared_ptr<RE_Unit_Set> blank();
    std::shared_ptr<RE_Unit_Set> copyOf(const RE_Unit_Set& units);
    /// The set equal to this one that was given first.
    std::shared_ptr<const RE_Unit_Set> share(std::shared_ptr<const RE_Unit_Set> units);

private:
    bool isSpareFree() const { return spare != nullptr && spare.use_count() == 1; }

    using Shared = std::shared_ptr<const RE_Unit_Set>;
    static constexpr std::size_t mostSearched = 16;

    std::pmr::vector<Shared> few;                             ///< the first ones, compared one by one
    std::pmr::unordered_multimap<std::size_t, Shared> known;  ///< all, once these are many
    std::shared_ptr<RE_Unit_Set> spare;
};
