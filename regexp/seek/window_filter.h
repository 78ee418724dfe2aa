// Where one of many literals may begin: their first units, taken together, are looked up in a table of bits.
//
// One look-up a position, however many literals there are, where a prefix scan would take up to eight only. A
// hit may be an accident, as different windows share bits; a miss is certain, as the window of every literal
// has its bit.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/seek/literal_trie.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

/// Looks at the first `width` units of each position. When case is ignored it leaves out the bit in which
/// most letters differ from their other form. Read-only once it is made.
class CORVANE_REGEXP_EXPORT RE_Window_Filter {
public:
    static constexpr std::size_t widest = 4;  ///< units

    /// Nothing when a literal is shorter than the narrowest window: for one unit a set of units is exact.
    static std::optional<RE_Window_Filter> make(const RE_Literal_Trie& literals);

    /// The first position in [p, end) at which a literal may begin, or `end`. Units up to `limit` are
    /// readable, and at least a window from each position on.
    const char16_t* find(const char16_t* p, const char16_t* end, const char16_t* limit) const;

    std::size_t width() const { return units; }
    /// The share of all windows at which it stops in vain, if windows were random.
    double falseShare() const { return occupied; }

private:
    RE_Window_Filter(std::size_t windowUnits, bool foldsCase, std::size_t literalCount);

    void admit(std::u16string_view window);
    /// `count` units as a number, the first of them in the lowest bits on every machine, so that `mask` may
    /// cut off the last.
    static std::uint64_t unitsAt(const char16_t* p, std::size_t count) {
        std::uint64_t window = 0;
        if constexpr (std::endian::native == std::endian::little) {
            std::memcpy(&window, p, count * sizeof(char16_t));
        } else {
            for (std::size_t i = 0; i < count; ++i) {
                window |= std::uint64_t{p[i]} << (16 * i);
            }
        }
        return window;
    }
    /// Reads the widest window in any case, as one load, and cuts it to the width.
    std::uint64_t wholeWindowAt(const char16_t* p) const { return (unitsAt(p, widest) & mask) | fold; }
    /// The same near the limit, where so many units cannot be read.
    std::uint64_t windowAt(const char16_t* p, const char16_t* limit) const {
        const bool whole = static_cast<std::size_t>(limit - p) >= widest;
        return whole ? wholeWindowAt(p) : (unitsAt(p, units) & mask) | fold;
    }
    /// Multiplicative hashing: the upper bits of the product depend on all units of the window.
    std::size_t placeOf(std::uint64_t window) const {
        return static_cast<std::size_t>((window * 0x9E3779B97F4A7C15u) >> shift);
    }
    bool holds(std::uint64_t window) const {
        const std::size_t place = placeOf(window);
        return (bits[place / 64] >> (place % 64) & 1) != 0;
    }

    std::size_t units;
    std::uint64_t mask;  ///< of the window's units within 64 bits
    std::uint64_t fold;  ///< bits that do not count: set in every window
    int shift;
    double occupied;
    std::vector<std::uint64_t, RE_Allocator<std::uint64_t>> bits;
};
