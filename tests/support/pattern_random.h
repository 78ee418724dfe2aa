// Seeded random patterns, drawn so that everything comes up, and subjects of a small alphabet.
//
// The standard library's distributions differ between implementations, so a seed repeats a run with one library only.
#pragma once

#include "regexp/base/flags.h"
#include "tests/support/pattern_writer.h"

#include <random>
#include <string>

namespace corvane_tests {

/// A pattern with the flags under which it was written.
struct DrawnPattern {
    std::u16string text;
    RE_Flags flags;
};

/// Patterns and subjects come from two generators: drawing more subjects does not change the patterns that follow, and
/// a failure can be narrowed down.
class PatternSource {
public:
    explicit PatternSource(std::uint64_t seed) : m_random(seed), m_subjects(seed + 1) {}

    /// A pattern of what chance brings, for the plain modes. By default it calls no host.
    std::u16string pattern(unsigned without = kDynamics);
    /// The next of a row of patterns and flags that lets no construct out of any context. Patterns do not depend
    /// on what else is drawn from the source.
    DrawnPattern draw(unsigned without = 0);
    /// After so many, everything has been drawn.
    static size_t sweep();
    /// The next of a row of patterns over two letters that bring every construct beside every other and into it,
    /// with nothing else around. After a few times `denseSweep` few are missing.
    DrawnPattern drawDense(unsigned without = 0);
    static size_t denseSweep();
    const Coverage& coverage() const { return m_coverage; }

    std::u16string subject(size_t longest);
    /// A subject of so many runs, each of one unit or of up to `longestRun`.
    std::u16string runs(size_t most, size_t longestRun);
    /// A number below `limit`.
    size_t below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(m_subjects); }
    bool oneIn(size_t chances) { return below(chances) == 0; }

private:
    RE_Flags flags();

    std::mt19937_64 m_random;    // of patterns
    std::mt19937_64 m_subjects;  // of all else
    Coverage m_coverage;
    size_t m_drawn = 0;
    size_t m_drawnDense = 0;
};

}  // namespace corvane_tests
