// What is in front of a line of output: names, numbers, and their colours.
#pragma once

#include "tools/report/sink.h"
#include "tools/report/style.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tool {

// Each piece of colour is closed again, so that any part of the output can be shown by itself.
inline constexpr std::string_view colorOff = "\033[0m";
inline constexpr std::string_view matchColor = "\033[1;31m";  // bold red, as search tools mark matches
inline constexpr std::string_view nameColor = "\033[35m";
inline constexpr std::string_view numberColor = "\033[32m";
inline constexpr std::string_view separatorColor = "\033[36m";

// Where something is, as far as the style shows it.
struct LinePlace {
    std::uint64_t line = 0;    // from 1
    std::uint64_t column = 0;  // from 1, in bytes; 0: there is none
    std::uint64_t byte = 0;    // from 0
};

// NAME:LINE:COLUMN:BYTE: with the parts that the style has. `separator` is a colon, or a hyphen for lines of context.
void appendPrefix(std::string& out, const ReportStyle& style, const TextInfo& text, const LinePlace& place,
                  char separator);
// The line of a text of which only a number is told.
void appendCount(std::string& out, const ReportStyle& style, const TextInfo& text, std::uint64_t count);
// The name alone, coloured, and as a link where the style says so. `line` is where the link leads to, if it is not 0.
void appendName(std::string& out, const ReportStyle& style, const TextInfo& text, std::uint64_t line);
void appendColored(std::string& out, bool color, std::string_view sequence, std::string_view text);

// The bytes as a terminal may see them: control characters, but for tabs, as \xHH. For lines of binary files.
std::string withoutControls(std::string_view bytes);

}  // namespace tool
