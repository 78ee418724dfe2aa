// Quoting by a backslash where that works, and by value where a backslash would give the unit another
// meaning.
#include "regexp/builder/quote.h"

#include "host/unit_class.h"

#include <string_view>

namespace RE_Builder_Space {
namespace {

// Trap: a backslash before a letter, a digit, `<` or `>` does not quote, so this is a list of the units
// that need one and not a test for punctuation. A blank and `#` matter under free spacing, a hyphen within
// sets.
constexpr std::u16string_view special = u"$^.\\+[](){}|-*?# ";

// The letter of the escape for a control unit, or 0: shorter and easier to read than its value.
char16_t controlLetter(char16_t unit) {
    switch (unit) {
        case u'\t':
            return u't';
        case u'\n':
            return u'n';
        case u'\v':
            return u'v';
        case u'\f':
            return u'f';
        case u'\r':
            return u'r';
        default:
            return u'\0';
    }
}

}  // namespace

void appendQuoted(std::u16string& pattern, char16_t unit) {
    const char16_t letter = controlLetter(unit);
    if (letter != u'\0') {
        pattern += u'\\';
        pattern += letter;
    } else if (special.find(unit) != std::u16string_view::npos) {
        pattern += u'\\';
        pattern += unit;
    } else if (unit < u' ' || unit == 127 || cvu_isspace(unit)) {
        // Free spacing would skip white space, and control units are hard to see.
        appendHexadecimal(pattern, unit);
    } else {
        pattern += unit;
    }
}

void appendHexadecimal(std::u16string& pattern, char16_t unit) {
    // Two digits or four; the braces keep a digit that follows apart.
    pattern += u"\\x{";
    for (int shift = unit > 0xFF ? 12 : 4; shift >= 0; shift -= 4) {
        pattern += u"0123456789ABCDEF"[unit >> shift & 0xF];
    }
    pattern += u'}';
}

std::u16string decimal(std::uint64_t number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

}  // namespace RE_Builder_Space
