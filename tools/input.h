// The text to search: a file or standard input, read once and converted once. The whole text is in memory,
// because patterns see a file as one text and matches may span lines.
#pragma once

#include "tools/utf8.h"

#include <string>
#include <string_view>

namespace tool {

// A whole text with what is said about it.
struct Input {
    std::string label;  // what the output calls it: the file name as given, or "(standard input)"
    // Of the file, with a byte order mark if it has one; for the progress line.
    std::size_t byteSize;
    Utf16Text text;
};

// "-" stands for standard input. Throws std::system_error when the file cannot be read, and Interrupted when
// the user breaks off the reading of a slow source.
Input readInput(const std::string& fileName);

// The whole content of a file, not converted, but without a byte order mark.
std::string readBytes(const std::string& fileName);

// The same with the byte order mark, if there is one.
std::string readAllBytes(const std::string& fileName);

// What a text file may start with to say that it is UTF-8.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

}  // namespace tool
