// Conversions between the case-file notation and UTF-16.
#include "tests/support/text.h"

#include <charconv>
#include <cstdio>
#include <stdexcept>

namespace corvane_tests {
namespace {

unsigned long number(std::string_view digits, int base) {
    unsigned long value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        throw std::invalid_argument("bad number in case text: " + std::string(digits));
    }
    return value;
}

std::u16string expandBraces(std::string_view inner) {
    if (inner.substr(0, 2) == "U+") {
        return std::u16string(1, static_cast<char16_t>(number(inner.substr(2), 16)));
    }
    const size_t star = inner.rfind('*');
    if (star == std::string_view::npos) {
        throw std::invalid_argument("neither a unit nor a repetition: " + std::string(inner));
    }
    const std::u16string piece = widen(inner.substr(0, star));
    std::u16string result;
    for (unsigned long left = number(inner.substr(star + 1), 10); left > 0; --left) {
        result += piece;
    }
    return result;
}

}  // namespace

std::u16string widen(std::string_view text) {
    return std::u16string(text.begin(), text.end());
}

std::u16string repeated(std::u16string_view text, size_t count) {
    std::u16string result;
    for (; count > 0; --count) {
        result += text;
    }
    return result;
}

std::string printable(std::u16string_view text) {
    std::string result;
    for (const char16_t unit : text) {
        if (unit >= 0x20 && unit < 0x7F) {
            result += static_cast<char>(unit);
            continue;
        }
        char escaped[16];
        std::snprintf(escaped, sizeof escaped, "{{U+%04X}}", static_cast<unsigned>(unit));
        result += escaped;
    }
    return result;
}

std::u16string expand(std::string_view text) {
    std::u16string result;
    while (!text.empty()) {
        const size_t end = text.substr(0, 2) == "{{" ? text.find("}}") : std::string_view::npos;
        if (end == std::string_view::npos) {
            result += widen(text.substr(0, 1));
            text.remove_prefix(1);
            continue;
        }
        result += expandBraces(text.substr(2, end - 2));
        text.remove_prefix(end + 2);
    }
    return result;
}

}  // namespace corvane_tests
