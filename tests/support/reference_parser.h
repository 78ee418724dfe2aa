// Reads the well-formed part of the dialect into a reference tree. Text that the engine would answer with a
// warning is outside its reach: the degraded forms are pinned by the case files instead.
#pragma once

#include "tests/support/reference_tree.h"

#include <optional>
#include <string_view>

namespace corvane_tests::reference {

/// Nothing when the pattern is malformed or uses something the reference does not know.
std::optional<Pattern> parse(std::u16string_view pattern, unsigned flagBits);

}  // namespace corvane_tests::reference
