// A literal that every match holds somewhere, and what may stand before it.
#pragma once

#include "regexp/seek/literal_search.h"
#include "regexp/unit_set.h"

#include <cstdint>
#include <memory>
#include <string>

struct RE_Required_Literal {
    std::u16string text;  ///< in lower case when case is ignored
    bool ignoreCase;
    std::shared_ptr<const RE_Unit_Set> before;  ///< every unit of a match before its first such literal is one of these
    std::uint64_t leastBefore;                  ///< how many there are at least

    RE_Literal literal() const { return {text.data(), text.size(), ignoreCase}; }
    RE_Literal_Search search() const { return RE_Literal_Search(literal()); }
};
