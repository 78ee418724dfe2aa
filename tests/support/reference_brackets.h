// Where a group ends whose text is not read as a pattern: an expression, or a text that is put together later.
#pragma once

#include <cstddef>
#include <string_view>

namespace corvane_tests::reference {

/// The index of the `)` that closes a group whose text begins here. Throws `Unreadable` when nothing does.
size_t groupEnd(std::u16string_view text, bool freeSpacing);

/// The index of the `}` that closes an expression that begins here; brackets of all kinds nest.
size_t expressionEnd(std::u16string_view text);

}  // namespace corvane_tests::reference
