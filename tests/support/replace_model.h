// Replacement done slowly and plainly, from the rules as a reader of the documentation would state them. Shares no code
// with the engine but the search for the matches.
#pragma once

#include "regexp/regexp.h"
#include "tests/support/engine_run.h"

#include <string>
#include <string_view>
#include <vector>

namespace corvane_tests {

/// The text for one match. Knows the escapes of the letters n and a, of octal digits and of punctuation; expressions
/// are never allowed. Warnings are added unless the list is null.
std::u16string modelPiece(std::u16string_view replacement, const RE_Results& match, std::vector<Warning>* warnings);

/// `piece` in the case of `matched`.
std::u16string modelCase(std::u16string piece, std::u16string_view matched);

/// The whole subject with match number `which` replaced, counted from 1; 0 replaces all.
std::u16string modelReplace(std::u16string_view subject, const RE_Tree& tree, std::u16string_view replacement,
                            bool adjustCase, size_t which);

}  // namespace corvane_tests
