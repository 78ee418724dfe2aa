// A literal that every match holds somewhere, and what may stand before it.
#pragma once

#include "regexp/nodes/string.h"
#include "regexp/unit_set.h"

#include <cstdint>
#include <memory>
#include <optional>

struct RE_Required_Literal {
    const RE_String* string;
    std::shared_ptr<const RE_Unit_Set> before;  ///< every unit of a match before its first such literal is one of these
    std::uint64_t leastBefore;                  ///< how many there are at least
};

/// The rarest of the literals that no match can do without, as far as that is easily seen.
std::optional<RE_Required_Literal> requiredLiteral(RE_Node* root);
