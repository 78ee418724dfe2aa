#include "regexp/parser/modes.h"

namespace {

RE_Flags modeFlag(char16_t letter) {
    switch (letter) {
        case u'i':
            return RE_FLAG_IGNORE_CASE;
        case u's':
            return RE_FLAG_DOT_ALL;
        case u'm':
            return RE_FLAG_LINE_ANCHORS;
        case u'x':
            return RE_FLAG_FREE_SPACING;
        case u'e':
            return RE_FLAG_EVALUATE;
        default:
            return 0;
    }
}

}  // namespace

RE_Modes readModes(const char16_t* text, std::size_t length, std::size_t at, RE_Flags flags) {
    RE_Modes modes{flags, at, RE_WARNING_NONE};
    bool letters = false;
    bool minus = false;
    for (; modes.end < length; ++modes.end) {
        const char16_t unit = text[modes.end];
        if (const RE_Flags flag = modeFlag(unit)) {
            modes.flags = minus ? modes.flags & ~flag : modes.flags | flag;
            letters = true;
        } else if (unit == u'-' && !minus) {
            minus = true;
        } else if (unit == u'-') {
            modes.problem = letters ? RE_WARNING_SECOND_MINUS : RE_WARNING_BAD_MODE;
            return modes;
        } else if (letters && (unit == u':' || unit == u')')) {
            return modes;
        } else {
            break;
        }
    }
    modes.problem = letters ? RE_WARNING_BAD_MODE_AFTER_LETTERS : RE_WARNING_BAD_MODE;
    return modes;
}
