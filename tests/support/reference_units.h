// Classes, escapes and sets of the reference parser, all of ASCII.
#pragma once

#include "tests/support/reference_reader.h"

namespace corvane_tests::reference {

/// The ranges of \d \s \w and their negations; empty for any other letter.
std::vector<Range> classRanges(char16_t letter);

/// The unit that an escaped character means; other letters and digits are beyond the reference.
char16_t escapedUnit(char16_t unit);

/// The rest of a set after its bracket.
struct SetText {
    std::vector<Range> ranges;
    bool negated = false;
};

SetText readSet(Reader& reader);

}  // namespace corvane_tests::reference
