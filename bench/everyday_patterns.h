// Two hundred patterns that programs use every day, each with a line of forty units or so on which it is used.
#pragma once

#include "bench/text.h"

#include <deque>
#include <string>
#include <utility>

namespace corvane_bench {

struct Everyday_Pattern {
    Everyday_Pattern(std::u16string ours, std::u16string others, std::u16string text)
        : pattern(std::move(ours)), peerPattern(std::move(others)), line(std::move(text)) {}

    std::u16string pattern;
    std::u16string peerPattern;  ///< where other dialects write it differently; empty: the same
    Text line;
};

/// Of `data/everyday.tsv`: kind, pattern, line, and the pattern in other dialects, with tabs between them. Read once.
const std::deque<Everyday_Pattern>& everydayPatterns();

/// All of them as a set, a pattern a line; in the words of other dialects if wanted.
std::u16string everydaySet(bool others);

}  // namespace corvane_bench
