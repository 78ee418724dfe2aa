// Classes, escapes and sets of the reference parser, all of ASCII.
#pragma once

#include "tests/support/reference_reader.h"

namespace corvane_tests::reference {

/// The ranges of \d \s \w and their negations; empty for any other letter.
std::vector<Range> classRanges(char16_t letter);

/// The unit that an escape means; its letter, which follows the backslash, has been taken. Other letters and
/// digits are beyond the reference, and so are characters that are not ASCII. Nothing for a number that is malformed:
/// then the escape is its letter and whatever stands there is text.
std::optional<char16_t> escapedUnit(Reader& reader, char16_t letter);

/// The rest of a set after its bracket.
struct SetText {
    std::vector<Range> ranges;
    bool negated = false;
};

SetText readSet(Reader& reader);

}  // namespace corvane_tests::reference
