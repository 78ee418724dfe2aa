// What the expressions of random patterns mean: one script for the host of the engine and for the reference. Sharing it
// is safe, as it is about what hosts answer and not about the engine.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane_tests {

/// The answer to an expression as it is written, given the texts of its references. Nothing is no answer, and
/// untrue as a condition.
///
///     =TEXT      the text after the sign, whatever it is
///     even($1)   yes, when the first text has an even number of units
///     unit($1)   the first unit of the text, as a literal; of an empty text nothing
///     yes        yes
///
/// Anything else has no answer.
std::optional<std::u16string> scriptedAnswer(std::u16string_view expression, const std::vector<std::u16string>& texts);

}  // namespace corvane_tests
