// The plain-text tables of match cases in tests/data.
//
// A case is one line of tab-separated columns:
//   pattern  modes  subject  offset  extent  tokens  warnings
//
// `modes` is "." for the plain modes (dot matches all, evaluation requested) or letters that change them: i, m and x
// switch a mode on, E accepts empty matches, K keeps tokens in effect, d makes the dot exclude line feeds.
//
// The extent is "start,length" in code units, or "-" for no match. Tokens are "start,length" pairs with an optional
// "=name", or "~" for one whose group took no part; "-" for none, "?" for unchecked. Warnings are numbers with an
// optional "@position", "-" for none, "?" for unchecked. Missing last columns mean "-".
//
// Lines that start with "# " and empty lines separate groups. {{...}} is expanded as text.h describes.
#pragma once

#include "tests/support/outcome.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane_tests {

/// The position is checked only where the table gives one.
struct ExpectedWarning {
    unsigned number = 0;
    std::optional<size_t> position;
};

struct MatchCase {
    std::string place;  // file:line
    std::u16string pattern;
    std::uint32_t flags = 0;
    std::u16string subject;
    size_t offset = 0;
    Outcome expected;
    bool checksTokens = true;
    std::vector<ExpectedWarning> warnings;
    bool checksWarnings = true;
};

/// Throws std::runtime_error naming the line when a file cannot be read or a line cannot be understood.
std::vector<MatchCase> readCaseFile(const std::string& path);

}  // namespace corvane_tests
