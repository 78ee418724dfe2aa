// For many patterns at once: which of them can have a match that starts in a stretch of text.
//
// One look at each unit of the stretch, however many patterns there are. Invariant: a pattern that is ruled out has no
// match that starts there; one that is not may still have none.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/graph/graph_facts.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

class CORVANE_REGEXP_EXPORT RE_Start_Table : public RE_Memory {
public:
    /// The pattern gets the next number, from 0 on.
    void add(const RE_Match_Beginnings& beginnings);
    std::size_t size() const { return patterns; }
    /// Answers are about the starts in [begin, end) from now on, and about that at `end` where the subject ends there.
    void survey(const char16_t* begin, const char16_t* end);
    bool mayStart(std::size_t pattern) const {
        return (groups[pattern / groupSize].surveyed >> (pattern % groupSize) & 1) != 0;
    }

private:
    static constexpr std::size_t groupSize = 64;
    static constexpr std::size_t above = RE_Low_Units::unitCount;  ///< the row of all other units

    /// So many patterns, one bit each.
    struct Group {
        std::array<std::uint64_t, above + 1> starting{};  ///< by the unit at the start
        std::uint64_t anywhere = 0;                       ///< those of which nothing is known
        std::uint64_t surveyed = 0;
    };

    std::vector<Group, RE_Allocator<Group>> groups;
    std::size_t patterns = 0;
};
