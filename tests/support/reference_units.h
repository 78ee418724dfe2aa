// Units, classes, escapes and sets of the reference parser. Beyond ASCII it knows the few units that random
// patterns and subjects are made of: Latin-1 and Cyrillic letters, some signs that fold to ASCII, a digit and a
// blank.
#pragma once

#include "tests/support/reference_reader.h"

namespace corvane_tests::reference {

/// The unit in lower case, as case is ignored: unit by unit.
char16_t lower(char16_t unit);
bool sameIgnoringCase(char16_t left, char16_t right);
/// Every unit that is the same when case is ignored, `unit` itself among them.
std::u16string casesOf(char16_t unit);
bool isWord(char16_t unit);

/// The ranges of \d \s \w and their negations; empty for any other letter.
std::vector<Range> classRanges(char16_t letter);

/// What the escape stands for whose letter was just taken; it may be a character of two units. Letters and digits
/// without a meaning are beyond the reference.
char32_t escapedCharacter(char16_t letter, Reader& reader);

/// The rest of a set after its bracket.
struct SetText {
    std::vector<Range> ranges;
    bool negated = false;
};

SetText readSet(Reader& reader);

}  // namespace corvane_tests::reference
