// Sets of units that a pattern names more than once are held once: each takes 8 KiB.
#pragma once

#include "regexp/unit_set.h"

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <unordered_map>

class RE_Set_Pool {
public:
    explicit RE_Set_Pool(std::pmr::memory_resource* memory) : known(memory) {}

    /// An empty set. One that was not kept by whom it was given to is given again.
    std::shared_ptr<RE_Unit_Set> blank();
    std::shared_ptr<RE_Unit_Set> copyOf(const RE_Unit_Set& units);
    /// The set equal to this one that was given first.
    std::shared_ptr<const RE_Unit_Set> share(std::shared_ptr<const RE_Unit_Set> units);

private:
    bool isSpareFree() const { return spare != nullptr && spare.use_count() == 1; }

    std::pmr::unordered_multimap<std::size_t, std::shared_ptr<const RE_Unit_Set>> known;
    std::shared_ptr<RE_Unit_Set> spare;
};
