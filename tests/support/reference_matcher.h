// A slow, plain backtracking matcher to compare the engine with. It is part of the tests only and must never be linked
// into the library: it is exponential by design, recursive, and keeps every state by value so that there is nothing to
// restore and nothing to forget.
//
// It shares no code with the engine. A construct that is new in the engine is written here a second time, from its
// description in docs/dialect.md, not from the engine's code.
#pragma once

#include "tests/support/outcome.h"

#include <optional>
#include <string_view>

namespace corvane_tests::reference {

/// The dialect, or PCRE2 where docs/dialect.md says that it does otherwise: each difference is one question to the
/// rules in the matcher.
enum class Rules { own, pcre2 };

/// Nodes that one call may visit, over all of its searches.
struct Limits {
    size_t steps = 200000;
};

/// Nothing when the pattern is outside the reference dialect or the step limit was reached. Expressions vanish,
/// as for a host that evaluates none.
std::optional<Outcome> search(std::u16string_view pattern, unsigned flagBits, std::u16string_view subject,
                              size_t offset, Limits limits = {});

struct Pattern;

/// The same over a pattern parsed once, with expressions as the script answers them.
std::optional<Outcome> search(const Pattern& pattern, unsigned flagBits, std::u16string_view subject, size_t offset,
                              Limits limits = {});

/// All matches from `offset` on: each search begins where the match before it ends, or a unit after an empty
/// one.
std::optional<std::vector<Outcome>> searchAll(const Pattern& pattern, unsigned flagBits, std::u16string_view subject,
                                              size_t offset, Limits limits = {}, Rules rules = Rules::own);

}  // namespace corvane_tests::reference
