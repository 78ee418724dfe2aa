// The least that any search for a literal can take: a bare vector scan, without an engine around it. Knows
// the text beforehand, which no engine does, so the floor cannot be reached, only approached.
#pragma once

#include <cstddef>
#include <string_view>

namespace corvane_bench {

/// Where to look in a text for a literal. Knows the text, so that it looks for its rarest units.
class Bare_Scan {
public:
    Bare_Scan(std::u16string_view wanted, bool ignoreCase, std::u16string_view sample);

    std::size_t count(std::u16string_view text) const;

private:
    bool standsAt(const char16_t* p) const;

    std::u16string_view m_literal;
    bool m_ignoreCase;
    std::size_t m_first;   ///< index of the rarest unit
    std::size_t m_second;  ///< index of the second rarest, the same when there is only one
};

}  // namespace corvane_bench
