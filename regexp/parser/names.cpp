// Reading names and skipping spacing.
#include "regexp/parser/names.h"

#include "regexp/parser/escapes.h"
#include "regexp/units/unit_set.h"

std::size_t skipFreeSpacing(const char16_t* text, std::size_t length, std::size_t at) {
    const RE_Unit_Set& spaces = RE_Unit_Classes::get().spaces;
    while (at < length && (spaces.contains(text[at]) || text[at] == u'#')) {
        if (text[at] == u'#') {
            while (at < length && text[at] != u'\n') {
                ++at;
            }
        }
        // A comment that the text ends in leaves nothing to step over; otherwise this is a blank, or the
        // line feed of a comment.
        at += at < length ? 1 : 0;
    }
    return at;
}

std::size_t skipNameUnits(const char16_t* text, std::size_t length, std::size_t at) {
    while (at < length && (isAsciiLetter(text[at]) || isAsciiDigit(text[at]) || text[at] == u'_')) {
        ++at;
    }
    return at;
}

// Fails without a partial result: the caller then reads the whole construct in another way.
RE_Name readName(const char16_t* text, std::size_t length, std::size_t at, RE_Flags flags) {
    const std::size_t start = skipSpacing(text, length, at, flags);
    if (start >= length || !isAsciiLetter(text[start])) {
        return {{}, at};
    }
    const std::size_t end = skipNameUnits(text, length, start);
    const std::size_t close = skipSpacing(text, length, end, flags);
    if (close >= length || text[close] != u'>') {
        return {{}, at};
    }
    return {std::u16string(text + start, end - start), close + 1};
}
