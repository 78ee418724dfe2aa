// Which windows a filter admits. Sizes: 64 bits a literal make an accident rare (one window in 64); fewer
// than 4096 bits would save nothing, and more than a million would no longer stay in a near cache.
#include "regexp/seek/window_filter.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace {

constexpr std::size_t bitsALiteral = 64;
constexpr std::size_t fewestBits = std::size_t{1} << 12;
constexpr std::size_t mostBits = std::size_t{1} << 20;
constexpr std::size_t narrowest = 2;
constexpr char16_t caseBit = 0x20;

/// The forms of a unit that differ in more than the bit that is ignored, one of each kind: there may be
/// several, as that of the Kelvin sign beside `k`.
std::u16string formsOf(char16_t lower) {
    std::u16string forms;
    RE_Case_Table::get().forEachForm(lower, [&forms](char16_t form) {
        const auto folded = static_cast<char16_t>(form | caseBit);
        if (forms.find(folded) == forms.npos) {
            forms.push_back(folded);
        }
    });
    return forms;
}

/// All windows with which a literal may begin when case is ignored: each form of a unit with each of the
/// others. At most four units, and few of them have more than one such form.
std::vector<std::u16string> windowsOf(std::u16string_view text) {
    std::vector<std::u16string> windows(1);
    for (const char16_t unit : text) {
        const std::u16string forms = formsOf(unit);
        std::vector<std::u16string> longer;
        for (const std::u16string& window : windows) {
            for (const char16_t form : forms) {
                longer.push_back(window + form);
            }
        }
        windows = std::move(longer);
    }
    return windows;
}

}  // namespace

// The size is a power of two, as a place is a number of upper bits. Forms that a literal has more than one of
// are not counted in `occupied`: it is an estimate.
RE_Window_Filter::RE_Window_Filter(std::size_t windowUnits, bool foldsCase, std::size_t literalCount)
    : units(windowUnits),
      mask(windowUnits == widest ? ~std::uint64_t{0} : (std::uint64_t{1} << (16 * windowUnits)) - 1),
      fold(foldsCase ? mask & 0x0020'0020'0020'0020u : 0) {
    const std::size_t size = std::bit_ceil(std::clamp(literalCount * bitsALiteral, fewestBits, mostBits));
    shift = 64 - std::countr_zero(size);
    occupied = static_cast<double>(literalCount) / static_cast<double>(size);
    bits.resize(size / 64);
}

void RE_Window_Filter::admit(std::u16string_view window) {
    const std::size_t place = placeOf(windowAt(window.data(), window.data() + window.size()));
    bits[place / 64] |= std::uint64_t{1} << (place % 64);
}

// As wide as the shortest literal allows: each unit more makes accidents rarer, and the look-up costs the
// same.
std::optional<RE_Window_Filter> RE_Window_Filter::make(const RE_Literal_Trie& literals) {
    if (literals.shortest() < narrowest) {
        return std::nullopt;
    }
    const std::size_t width = std::min(literals.shortest(), widest);
    RE_Window_Filter filter(width, literals.ignoresCase(), literals.count());
    for (std::size_t i = 0; i < literals.count(); ++i) {
        const std::u16string_view start = literals.text(i).substr(0, width);
        if (!literals.ignoresCase()) {
            filter.admit(start);
            continue;
        }
        for (const std::u16string& window : windowsOf(start)) {
            filter.admit(window);
        }
    }
    return filter;
}

// Up to `wholeEnd` the widest window can be read. The positions after it, fewer than a window, take the
// careful way.
const char16_t* RE_Window_Filter::find(const char16_t* p, const char16_t* end, const char16_t* limit) const {
    const char16_t* const wholeEnd =
        std::max(p, std::min(end, limit - std::min<std::ptrdiff_t>(limit - p, widest - 1)));
    for (; p < wholeEnd; ++p) {
        if (holds(wholeWindowAt(p))) {
            return p;
        }
    }
    while (p < end && !holds(windowAt(p, limit))) {
        ++p;
    }
    return p;
}
