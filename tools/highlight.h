// Marking of matched text in the colours of a terminal. Also what writes lines without marks, given no
// matches.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace tool {

// A stretch of a text, in code units.
struct Extent {
    std::size_t start;
    std::size_t length;

    std::size_t end() const { return start + length; }
};

// "auto" colours only a terminal that understands colours, and respects NO_COLOR; "always" and "never" do
// what they say; anything else is a UsageError.
bool colorWanted(const std::string& when);

// Appends the line [begin, end) of `text` as UTF-8, the parts inside `matches` (ascending) marked.
void appendHighlighted(std::string& out, std::u16string_view text, Extent line,
                       std::span<const Extent> matches);

}  // namespace tool
