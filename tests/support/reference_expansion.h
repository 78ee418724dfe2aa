// Texts that are put together from tokens and answers of the host while the reference searches.
#pragma once

#include "tests/support/reference_tree.h"

#include <optional>
#include <string_view>

namespace corvane_tests::reference {

/// The parts of `(??text)`. Throws `Unreadable` where the text would raise a warning.
std::vector<TextPart> readExpansion(std::u16string_view text, bool mayEvaluate);

/// The place of a search, as expressions and references see it.
struct Place {
    virtual ~Place() = default;
    /// Of the token in effect; nothing when there is none.
    virtual std::optional<std::u16string> numbered(size_t slot) const = 0;
    virtual std::optional<std::u16string> named(std::u16string_view name) const = 0;
    /// By the sign of the reference: the match up to here (& and 0), what precedes and what follows it (` and ').
    virtual std::u16string special(char16_t sign) const = 0;
};

/// Nothing when an expression yields nothing.
std::optional<std::u16string> expand(const std::vector<TextPart>& parts, const Place& place);

/// The answer of the scripted host to the expression, which is given what its references say.
std::optional<std::u16string> evaluate(std::u16string_view expression, const Place& place);

}  // namespace corvane_tests::reference
