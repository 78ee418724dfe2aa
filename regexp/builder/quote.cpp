#include "regexp/builder/quote.h"

#include "host/unit_class.h"

#include <string_view>

namespace RE_Builder_Space {
namespace {

// Trap: a backslash before a letter, a digit, `<` or `>` is not a quotation, so this is a list of those that
// need one.
constexpr std::u16string_view special = u"$^.\\+[](){}|-*?# ";

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
    } else if (unit < u' ' || unit == 127 ||
               cvu_isspace(unit)) {  // free spacing would skip what is white space
        appendHexadecimal(pattern, unit);
    } else {
        pattern += unit;
    }
}

void appendHexadecimal(std::u16string& pattern, char16_t unit) {
    pattern += u"\\x{";
    for (int shift = unit > 0xFF ? 12 : 4; shift >= 0; shift -= 4) {
        pattern += u"0123456789ABCDEF"[unit >> shift & 0xF];
    }
    pattern += u'}';
}

}  // namespace RE_Builder_Space
