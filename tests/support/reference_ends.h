// A second reference, for loops of very many passes: it works out the ends of every part of a pattern as a list in
// order of preference, each end once. So it makes hundreds of passes that could be taken in more ways than anyone can
// try one by one. An end that comes up again later in a list is left out, as whatever follows has failed from it by
// then.
#pragma once

#include "tests/support/outcome.h"

#include <optional>
#include <string_view>

namespace corvane_tests::reference {

/// As `search`. Patterns of one group at most, as that is all there is of tokens here, without cases, conditions and
/// look-behinds. Nothing for others, and where the lists become too long.
std::optional<Outcome> searchByEnds(std::u16string_view pattern, unsigned flagBits, std::u16string_view subject,
                                    size_t offset);

}  // namespace corvane_tests::reference
