#include "regexp/seek/window_filter.h"

#include <algorithm>

namespace {

constexpr std::size_t bitsALiteral = 64;
constexpr std::size_t fewestBits = std::size_t{1} << 12;
constexpr std::size_t mostBits = std::size_t{1} << 20;
constexpr std::size_t narrowest = 2;
constexpr char16_t caseBit = 0x20;

// The forms of a unit differ in the one bit that is ignored.
bool foldsByBit(char16_t lower) {
    const RE_Case_Table& cases = RE_Case_Table::get();
    const char16_t upper = cases.upper(lower);
    const std::size_t known = upper != lower && cases.lower(upper) == lower ? 2 : 1;
    return cases.formsWithin(lower) == known && (known == 1 || (upper | caseBit) == (lower | caseBit));
}

}  // namespace

RE_Window_Filter::RE_Window_Filter(std::size_t windowUnits, bool foldsCase, std::size_t literalCount)
    : units(windowUnits),
      mask(windowUnits == widest ? ~std::uint64_t{0} : (std::uint64_t{1} << (16 * windowUnits)) - 1),
      fold(foldsCase ? mask & 0x0020'0020'0020'0020u : 0) {
    const std::size_t size = std::bit_ceil(std::clamp(literalCount * bitsALiteral, fewestBits, mostBits));
    shift = 64 - std::countr_zero(size);
    occupied = static_cast<double>(literalCount) / static_cast<double>(size);
    bits.resize(size / 64);
}

std::optional<RE_Window_Filter> RE_Window_Filter::make(const RE_Literal_Trie& literals) {
    if (literals.shortest() < narrowest) {
        return std::nullopt;
    }
    const std::size_t width = std::min(literals.shortest(), widest);
    RE_Window_Filter filter(width, literals.ignoresCase(), literals.count());
    for (std::size_t i = 0; i < literals.count(); ++i) {
        const std::u16string_view text = literals.text(i);
        if (literals.ignoresCase() && !std::all_of(text.begin(), text.begin() + width, foldsByBit)) {
            return std::nullopt;
        }
        const std::size_t place = filter.placeOf(filter.windowAt(text.data(), text.data() + text.size()));
        filter.bits[place / 64] |= std::uint64_t{1} << (place % 64);
    }
    return filter;
}

const char16_t* RE_Window_Filter::find(const char16_t* p, const char16_t* end, const char16_t* limit) const {
    const char16_t* const wholeEnd =
        std::max(p, std::min(end, limit - std::min<std::ptrdiff_t>(limit - p, widest - 1)));
    for (; p < wholeEnd; ++p) {
        std::uint64_t window = 0;
        std::memcpy(&window, p, sizeof window);
        if (holds((window & mask) | fold)) {
            return p;
        }
    }
    while (p < end && !holds(windowAt(p, limit))) {
        ++p;
    }
    return p;
}
