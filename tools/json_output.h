// Machine-readable output, one JSON object for each line. Positions and lengths are code units of UTF-16,
// lines and columns count from 1.
#pragma once

#include "regexp/inspect/hints.h"
#include "tools/console_context.h"

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace tool {

// A match, with what is known of its place.
struct MatchRecord {
    std::string_view file;
    std::uint64_t line = 0;    // from 1
    std::uint64_t column = 0;  // from 1
    std::uint64_t byte = 0;    // of the text, from 0
    std::uint64_t base = 0;    // unit of the text at which `text` begins
    std::u16string_view text;  // in which the results are
    const RE_Results* results = nullptr;
    std::optional<std::size_t> pattern;  // from 1; where there are several
};

// With its line feed.
std::string jsonLine(const MatchRecord& match);

// The warning with its place in the pattern and, where there is one, its correction.
void writeJsonWarning(std::ostream& out, std::u16string_view pattern, const PatternWarning& warning);

// The same keys; a hint has no number, and its name is "hint".
void writeJsonHint(std::ostream& out, std::u16string_view pattern, const RE_Hint& hint);

}  // namespace tool
