// The escapes for one character. A new one is a case of `readEscape`.
#include "regexp/parser/escapes.h"

#include <cstdint>

namespace {

constexpr char32_t lastCharacter = 0x10FFFF;

// 99 is no digit of any base.
int digitValue(char16_t unit) {
    if (isAsciiDigit(unit)) {
        return unit - u'0';
    }
    const char16_t lower = unit | 0x20;
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : 99;
}

struct Digits {
    char32_t value = 0;
    std::size_t end = 0;
    std::size_t count = 0;
};

// Reads up to `most` digits of this base. The value stops growing above the last character, so that any
// number of digits is read without overflow and still found too large.
Digits readDigits(const char16_t* text, std::size_t length, std::size_t at, int base, std::size_t most) {
    Digits digits{0, at, 0};
    while (digits.end < length && digits.count < most && digitValue(text[digits.end]) < base) {
        const char32_t next =
            digits.value * static_cast<char32_t>(base) + static_cast<char32_t>(digitValue(text[digits.end]));
        digits.value = digits.value > lastCharacter ? digits.value : next;
        ++digits.end;
        ++digits.count;
    }
    return digits;
}

// A number in braces after the letter at `letter`. Without digits, without an end or above U+10FFFF it is
// malformed: what is left is the letter, and its braces as text.
RE_Escape readBraced(const char16_t* text, std::size_t length, std::size_t letter, int base,
                     RE_Warning problem) {
    const Digits digits = readDigits(text, length, letter + 2, base, length);
    const bool closed = digits.end < length && text[digits.end] == u'}';
    if (closed && digits.count > 0 && digits.value <= lastCharacter) {
        return {digits.value, digits.end + 1};
    }
    return {text[letter], letter + 1, problem, letter};
}

bool opensBrace(const char16_t* text, std::size_t length, std::size_t at) {
    return at + 1 < length && text[at + 1] == u'{';
}

// \x takes one or two digits, or any number of them in braces.
RE_Escape readHexadecimal(const char16_t* text, std::size_t length, std::size_t letter) {
    if (opensBrace(text, length, letter)) {
        return readBraced(text, length, letter, 16, RE_WARNING_BAD_HEX);
    }
    const Digits digits = readDigits(text, length, letter + 1, 16, 2);
    if (digits.count == 0) {
        return {text[letter], letter + 1, RE_WARNING_BAD_HEX, letter};
    }
    return {digits.value, digits.end};
}

// \o has digits in braces only; \0 is read below, with up to two more digits.
RE_Escape readOctal(const char16_t* text, std::size_t length, std::size_t letter) {
    if (opensBrace(text, length, letter)) {
        return readBraced(text, length, letter, 8, RE_WARNING_BAD_OCTAL);
    }
    return {text[letter], letter + 1, RE_WARNING_BAD_OCTAL, letter};
}

}  // namespace

RE_Escape readEscape(const char16_t* text, std::size_t length, std::size_t at) {
    const std::size_t letter = at + 1;
    if (letter >= length) {
        return {u'\\', letter, RE_WARNING_TRAILING_BACKSLASH, at};
    }
    const char16_t unit = text[letter];
    switch (unit) {
        case u'a':
            return {7, letter + 1};
        case u'b':
            return {8, letter + 1};
        case u'f':
            return {12, letter + 1};
        case u'n':
            return {10, letter + 1};
        case u'r':
            return {13, letter + 1};
        case u't':
            return {9, letter + 1};
        case u'v':
            return {11, letter + 1};
        case u'x':
            return readHexadecimal(text, length, letter);
        case u'o':
            return readOctal(text, length, letter);
        case u'0': {
            const Digits digits = readDigits(text, length, letter, 8, 3);
            return {digits.value, digits.end};
        }
        default:
            break;
    }
    // Any punctuation may be escaped. A letter or digit without a meaning gets a warning, as its author
    // expects one.
    const bool unknown = isAsciiDigit(unit) || isAsciiLetter(unit);
    return {unit, letter + 1, unknown ? RE_WARNING_UNKNOWN_ESCAPE : RE_WARNING_NONE, letter};
}
