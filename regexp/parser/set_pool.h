// Sets of units that a pattern names more than once are held once: each takes 8 KiB.
#pragma once

#include "regexp/unit_set.h"

#include <cstddef>
#include <memory>
#include <unordered_map>

class RE_Set_Pool {
public:
    /// The set equal to this one that was given first.
    std::shared_ptr<const RE_Unit_Set> share(std::shared_ptr<const RE_Unit_Set> units);

private:
    std::unordered_multimap<std::size_t, std::shared_ptr<const RE_Unit_Set>> known;
};
