// Filling the tables. Each entry is computed from entries of later positions only, which the loops have
// filled before.
#include "regexp/replace/backward_tables.h"

#include "regexp/parser/escapes.h"
#include "regexp/units/unit_set.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace {

constexpr std::u16string_view openings = u"([{";
constexpr std::u16string_view closings = u")]}";
constexpr std::size_t brace = 2;  // the index of the braces among them

}  // namespace

std::size_t RE_Brace_Matcher::closing(std::size_t content) {
    if (first == none) {
        computeFrom(content);
    }
    return known(content)[brace];
}

void RE_Brace_Matcher::computeFrom(std::size_t start) {
    first = start;
    // Two more entries than units, both without an answer: the end of the text, and what an escape at the
    // end looks at.
    closers.assign(length - start + 2, {none, none, none});
    std::size_t nextLine = length;
    for (std::size_t at = length; at > start;) {
        --at;
        closers[at - first] = closersAt(at, nextLine);
        nextLine = text[at] == u'\n' ? at + 1 : nextLine;
    }
}

// `nextLine` is the index after the next line feed. What pairs at `at` is skipped by taking the answer from
// beyond its end; an opening without an end leaves nothing that could be paired outside of it.
RE_Brace_Matcher::Closers RE_Brace_Matcher::closersAt(std::size_t at, std::size_t nextLine) const {
    const char16_t unit = text[at];
    if (unit == u'\\') {
        return known(at + 2);
    }
    if (unit == u'#' && freeSpacing) {
        return known(nextLine);
    }
    if (const std::size_t opened = openings.find(unit); opened != openings.npos) {
        const std::size_t end = known(at + 1)[opened];
        return end != none ? known(end + 1) : Closers{none, none, none};
    }
    Closers found = known(at + 1);
    if (const std::size_t closed = closings.find(unit); closed != closings.npos) {
        found[closed] = at;
    }
    return found;
}

// Positions beyond the table have the answer of its last entry, which is none.
const RE_Brace_Matcher::Closers& RE_Brace_Matcher::known(std::size_t at) const {
    return closers[std::min(at - first, closers.size() - 1)];
}

// Like `readName`, but spacing is skipped by the table and the place where a name was missing is
// remembered.
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
    // Only the farthest place is kept: brackets within a comment lead to its end, and places before that
    // must not displace it.
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

// A comment ends where the spacing after its line feed ends; a text that ends in a comment ends there, too.
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
