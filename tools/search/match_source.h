// Where matches come from: a search with one pattern, or with several at once.
#pragma once

#include "regexp/regexp.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace tool {

// A match, and which of the patterns it is of. The results are a view, good until the next search.
struct FoundMatch {
    const RE_Results* results;
    std::size_t pattern;
};

// Belongs to one thread; refers to the trees, of which there is at least one.
class MatchSource {
public:
    explicit MatchSource(std::span<const RE_Tree* const> trees);

    // Goes on with this text, which is not null.
    void use(std::u16string_view text);
    // The leftmost match at or after `offset`; of those that begin together, that of the first pattern. Nothing when
    // there is none. Offsets grow from call to call. Throws Interrupted when the search was broken off.
    std::optional<FoundMatch> find(std::size_t offset);

    // Calls `visit` with the matches of the text that is in use that start at or after `from`, from left to right, none
    // overlapping another. An empty match that directly follows a match is left out. Ends when `visit` returns false.
    template <class Visit>
    void forEach(std::size_t from, Visit visit) {
        forEach(find(from), visit);
    }
    // The same from a match on that `find` has just found.
    template <class Visit>
    void forEach(std::optional<FoundMatch> found, Visit visit);

private:
    std::size_t length_ = 0;
    std::optional<RE_Match_Sequence> one_;
    std::optional<RE_Pattern_Set> many_;
};

template <class Visit>
void MatchSource::forEach(std::optional<FoundMatch> found, Visit visit) {
    std::optional<std::size_t> previousEnd;
    while (found) {
        const std::size_t start = found->results->matchStart;
        const std::size_t length = found->results->matchLength;
        const bool isRepeated = length == 0 && previousEnd == start;
        previousEnd = start + length;
        if (!isRepeated && !visit(*found)) return;
        const std::size_t next = length == 0 ? start + 1 : start + length;
        if (next > length_) return;
        found = find(next);
    }
}

}  // namespace tool
