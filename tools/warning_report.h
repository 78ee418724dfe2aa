// Warnings as people read them: number, place, sentence, and a caret under the place.
//
// Positions that the engine reports are indexes in code units; a place is what an editor shows for one.
#pragma once

#include "tools/console_context.h"

#include "regexp/inspect/hints.h"

#include <string>
#include <string_view>

namespace tool {

// Where a warning is, counted from 1 as editors do. Columns count code units.
struct PatternPlace {
    std::size_t line;
    std::size_t column;
    std::u16string_view lineText;
};

// The place of a position from 0 to the length of the pattern.
PatternPlace locate(std::u16string_view pattern, std::size_t position);

// Three lines: the heading with the place and the sentence, the line of the pattern, the caret. No line feed
// at the end.
std::string describePlace(std::u16string_view pattern, std::size_t position, const std::string& heading,
                          std::string_view sentence);

// The sentence, the line of the pattern, what it is about underlined, and that line corrected where that is
// plain.
std::string describeWarning(std::u16string_view pattern, const PatternWarning& warning);

// Likewise about what means something else in other engines.
std::string describeHint(std::u16string_view pattern, const RE_Hint& hint);
// On standard error, if people read it: a terminal.
void printHints(std::u16string_view pattern, const std::vector<RE_Hint>& hints);

// Describes the first of them on standard error, as each repeats a line of the text, and counts the others.
// Where a command takes two texts, `subject` says which of them is meant.
void printWarnings(std::u16string_view pattern, const std::vector<PatternWarning>& warnings,
                   std::string_view subject = {});

// In columns of a terminal, of a text without tabs, whose width would depend on where it begins.
std::size_t terminalWidth(std::u16string_view text);

}  // namespace tool
