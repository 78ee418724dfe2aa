// Going from match to match with many patterns of an engine that searches with one: each pattern keeps its next match
// until the walk has passed it, as a careful program would write it.
#pragma once

#include "bench/engine.h"
#include "bench/engines/walk.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane_bench {

/// A pattern a line.
inline std::vector<std::u16string_view> patternsOf(std::u16string_view lines) {
    std::vector<std::u16string_view> patterns;
    for (std::size_t end = 0; end != lines.npos; lines.remove_prefix(end == lines.npos ? 0 : end + 1)) {
        end = lines.find(u'\n');
        patterns.push_back(lines.substr(0, end));
    }
    return patterns;
}

/// `find(i, text, offset, start, end)` searches with the pattern `i` and sets the extent of the match. Without `keep` each
/// pattern is searched with each time.
template <class Find>
std::optional<Answer> walkSet(std::size_t patterns, std::u16string_view text, bool keep, Find find) {
    struct Next {
        std::size_t start = 0;
        std::size_t end = 0;
        bool isKnown = false;
    };
    std::vector<Next> next(patterns);
    Answer answer;
    for (std::size_t offset = 0; offset <= text.size();) {
        const Next* best = nullptr;
        for (std::size_t i = 0; i < patterns; ++i) {
            Next& own = next[i];
            if (!keep || !own.isKnown || own.start < offset) {
                own.isKnown = true;
                const Found found = find(i, text, offset, own.start, own.end);
                if (found == Found::gaveUp) {
                    return std::nullopt;
                }
                if (found == Found::nothing) {
                    own.start = text.npos;
                }
            }
            if (own.start != text.npos && (best == nullptr || own.start < best->start)) {
                best = &own;
            }
        }
        if (best == nullptr) {
            break;
        }
        ++answer.count;
        offset = std::max(best->end, best->start + 1);
    }
    return answer;
}

/// A searcher for sets, which has no other task.
class Set_Searcher : public Searcher {
public:
    std::optional<Answer> countMatches(const Text& text) override { return countIn(text.units); }
    std::optional<Answer> countLines(const Text& text) override {
        Answer sum;
        for (const Line& line : text.lines) {
            const std::optional<Answer> answer = countIn(line.units);
            if (!answer) {
                return std::nullopt;
            }
            sum.count += answer->count;
        }
        return sum;
    }
    std::optional<Answer> countTokens(const Text&) override { return std::nullopt; }
    std::optional<Answer> replace(const Text&) override { return std::nullopt; }

protected:
    virtual std::optional<Answer> countIn(std::u16string_view text) = 0;
};

}  // namespace corvane_bench
