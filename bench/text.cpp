// Forms of a text: units, bytes and lines of both. Made before anything is measured, so that no engine pays
// for a conversion.
#include "bench/text.h"

#include <cstddef>
#include <utility>

namespace corvane_bench {
namespace {

// Lines of larger texts would take more memory than the texts, and no row uses them.
constexpr std::size_t MOST_UNITS_WITH_LINES = 1'000'000;

template <class Unit>
std::vector<std::basic_string_view<Unit>> splitLines(std::basic_string_view<Unit> text) {
    std::vector<std::basic_string_view<Unit>> lines;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find(Unit{'\n'}), text.size());
        lines.push_back(text.substr(0, length));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return lines;
}

}  // namespace

// Units up to 0x7FF take two bytes, all others three, as there are no surrogates in these texts.
std::string toUtf8(std::u16string_view text) {
    const auto tail = [](unsigned bits) { return static_cast<char>(0x80U | (bits & 0x3FU)); };
    std::string bytes;
    bytes.reserve(text.size());
    for (const char16_t unit : text) {
        const unsigned value = unit;
        if (value < 0x80U) {
            bytes += static_cast<char>(value);
        } else if (value < 0x800U) {
            bytes += {static_cast<char>(0xC0U | (value >> 6U)), tail(value)};
        } else {
            bytes += {static_cast<char>(0xE0U | (value >> 12U)), tail(value >> 6U), tail(value)};
        }
    }
    return bytes;
}

Text::Text(std::u16string text) : units(std::move(text)), bytes(toUtf8(units)) {
    if (units.size() > MOST_UNITS_WITH_LINES) {
        return;
    }
    // A line feed is one unit and one byte, so both have the same lines.
    const auto unitLines = splitLines(std::u16string_view(units));
    const auto byteLines = splitLines(std::string_view(bytes));
    for (std::size_t i = 0; i < unitLines.size(); ++i) {
        lines.push_back({unitLines[i], byteLines[i]});
    }
}

}  // namespace corvane_bench
