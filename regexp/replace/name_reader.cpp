#include "regexp/replace/name_reader.h"

#include "regexp/parser/escapes.h"
#include "regexp/units/unit_set.h"

#include <string>

RE_Name RE_Name_Reader::read(std::size_t content) {
    const std::size_t start = skipSpacing(content);
    RE_Name noName = {{}, content};
    if (start >= length || start == nameless || !isAsciiLetter(text[start])) {
        return noName;
    }
    const std::size_t end = skipNameUnits(text, length, start);
    const std::size_t close = skipSpacing(end);
    if (close < length && text[close] == u'>') {
        return {std::u16string(text + start, end - start), close + 1};
    }
    // Brackets in a comment lead ever further ahead; places between them must not displace what lies behind
    // it.
    if (start != content && (nameless == none || start > nameless)) {
        nameless = start;
    }
    return noName;
}

std::size_t RE_Name_Reader::skipSpacing(std::size_t at) {
    if (!freeSpacing) {
        return at;
    }
    if (first == none) {
        computeFrom(at);
    }
    return skipped[at - first];
}

void RE_Name_Reader::computeFrom(std::size_t start) {
    first = start;
    const RE_Unit_Set& spaces = RE_Unit_Classes::get().spaces;
    skipped.assign(length - start + 1, length);
    std::size_t lineEnd = length;
    for (std::size_t at = length; at > start;) {
        --at;
        lineEnd = text[at] == u'\n' ? at : lineEnd;
        const bool blank = spaces.contains(text[at]);
        skipped[at - first] = text[at] == u'#' ? skipped[lineEnd - first]
                              : blank          ? skipped[at + 1 - first]
                                               : at;
    }
}
