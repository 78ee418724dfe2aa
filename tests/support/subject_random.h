// Subjects for a pattern: what it may match, what nearly does, and what has nothing to do with it.
#pragma once

#include "tests/support/pattern_random.h"
#include "tests/support/reference_tree.h"

#include <string>

namespace corvane_tests {

/// A text of at most `longest` units, half of them made of what the pattern consumes. Without a pattern (null)
/// they are letters only.
std::u16string drawSubject(PatternSource& source, const reference::Pattern* pattern, size_t longest);

/// The same with the units of the text in runs and the whole repeated, for searches that take long.
std::u16string drawLongSubject(PatternSource& source, const reference::Pattern* pattern, size_t longest);

}  // namespace corvane_tests
