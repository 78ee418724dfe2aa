// Reads the well-formed part of the dialect into a reference tree. Text that the engine would answer with a warning is
// outside its reach: the degraded forms are pinned by the case files instead.
#pragma once

#include "tests/support/reference_tree.h"

#include <optional>
#include <string_view>

namespace corvane_tests::reference {

/// Nothing when the pattern is malformed or uses something the reference does not know. Expressions are read
/// for a host that evaluates them; for others they vanish.
std::optional<Pattern> parse(std::u16string_view pattern, unsigned flagBits, bool hostEvaluates = false);

/// A text that a pattern includes while it runs: it makes no tokens.
std::optional<Pattern> parseIncluded(std::u16string_view text, Flags modes);

}  // namespace corvane_tests::reference
