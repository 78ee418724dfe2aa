// Units as they appear in the labels of nodes.
//
// Labels are read by people, in graphs and on terminals, so everything that would not show is written out.
// Nothing here is parsed again.
#pragma once

#include "regexp/base/export.h"

#include <cstddef>
#include <string>
#include <string_view>

/// UTF-8 of the units; those that have no glyph, or that no file format allows, are written as \x{...}.
CORVANE_REGEXP_EXPORT std::string labelText(const char16_t* text, std::size_t length);
inline std::string labelText(char16_t unit) {
    return labelText(&unit, 1);
}
/// UTF-8 without its middle where it has more than `longest` bytes. Cut between characters, so the result is
/// valid UTF-8 again; it may be longer than `longest` by a few bytes.
CORVANE_REGEXP_EXPORT std::string shortened(std::string_view text, std::size_t longest);
/// The text as a quoted string of the graph language.
std::string quotedLabel(std::string_view text);
/// A node of a graph, by number and label, with further attributes.
void appendGraphNode(std::string& out, std::size_t number, std::string_view label,
                     std::string_view attributes = {});
