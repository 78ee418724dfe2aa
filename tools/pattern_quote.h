// Parts of a pattern within lines for people.
#pragma once

#include "regexp/inspect/pattern_parts.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tool {

// The part as it is written, but on one line and no longer than this many units. UTF-8; empty for no part.
std::string quotePart(std::u16string_view pattern, const std::optional<RE_Part_Of_Pattern>& part,
                      std::size_t most);

// Blanks behind a text of UTF-8, up to this many columns of the terminal.
std::string padded(const std::string& text, std::size_t columns);

}  // namespace tool
