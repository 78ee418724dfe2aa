// Going from match to match with an engine that searches from an offset. All such peers use these loops, so
// they differ in their searches and in nothing around them.
#pragma once

#include "bench/engine.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

namespace corvane_bench {

enum class Found { match, nothing, gaveUp };

/// Matches of `text`. `find(text, offset, end)` searches and sets `end` to the end of the match; `tokens()`
/// is the length of the tokens of the last match.
template <class View, class Find, class Tokens>
std::optional<Answer> walkMatches(View text, Find find, Tokens tokens) {
    Answer answer;
    std::size_t offset = 0;
    while (offset <= text.size()) {
        std::size_t end = offset;
        const Found found = find(text, offset, end);
        if (found == Found::gaveUp) {
            return std::nullopt;
        }
        if (found == Found::nothing) {
            break;
        }
        ++answer.count;
        answer.tokenUnits += tokens();
        // No row matches the empty text; the unit more keeps a peer that does from standing still.
        offset = std::max(end, offset + 1);
    }
    return answer;
}

/// Lines in which `find` finds something. `Form` is the member of `Line` that the engine searches.
template <auto Form, class Find>
std::optional<Answer> walkLines(const Text& text, Find find) {
    Answer answer;
    for (const Line& line : text.lines) {
        std::size_t end = 0;
        const Found found = find(line.*Form, std::size_t{0}, end);
        if (found == Found::gaveUp) {
            return std::nullopt;
        }
        answer.count += found == Found::match ? 1U : 0U;
    }
    return answer;
}

inline std::size_t noTokens() {
    return 0;
}

}  // namespace corvane_bench
