// Pattern text put into other pattern text: alternatives of several patterns, and a pattern between anchors.
#pragma once

#include "regexp/base/flags.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// The pattern with the corrections that its warnings propose, as often as they propose any. Meant for people's eyes and for
// pairing brackets; a warning without a correction stays.
std::u16string correctedPattern(std::u16string pattern, RE_Flags flags);

// The same pattern, or one that means the same and whose brackets pair, so that it can be put between others. Nothing where
// that is not to be had.
std::optional<std::u16string> selfContained(std::u16string_view pattern, RE_Flags flags);

// A group around a self-contained pattern. `before` and `after` are put around it.
std::u16string grouped(std::u16string_view before, std::u16string_view pattern, std::u16string_view after,
                       RE_Flags flags);

// One pattern for all of them, self-contained as they are, that matches wherever and as the first that matches there. Tokens
// get other numbers. Nothing where it would mean something else: a pattern refers to tokens.
std::optional<std::u16string> joinedPattern(const std::vector<std::u16string>& patterns, RE_Flags flags);

// Whether a capital letter is among those that the pattern says literally; for --smart-case.
bool hasLiteralCapital(std::u16string_view pattern);

}  // namespace tool
