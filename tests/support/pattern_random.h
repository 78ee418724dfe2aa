// Seeded random patterns and subjects. The patterns are well formed and use the whole dialect in small
// pieces; subjects are drawn from an alphabet small enough for matches to be common.
#pragma once

#include <random>
#include <string>

namespace corvane_tests {

/// What a generated pattern may contain beyond literals, sets, groups, alternation and quantifiers.
struct PatternTraits {
    bool captures = true;
    bool references = true;  // back-references, named groups and conditions on tokens
    bool conditions = true;
    bool lookarounds = true;
    bool atomics = true;
    bool words = true;  // \< and \>, which other engines lack
    bool modes = true;
    bool nullableLoops = true;  // loops whose body can match empty
};

class PatternSource {
public:
    explicit PatternSource(std::uint64_t seed) : m_random(seed) {}

    std::string pattern(const PatternTraits& traits);
    std::u16string subject(size_t longest);
    /// A subject of so many runs, each of one unit or of up to `longestRun`.
    std::u16string runs(size_t most, size_t longestRun);
    /// A number below `limit`.
    size_t below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(m_random); }

private:
    /// A piece of pattern and whether it can match the empty string (true when unsure).
    struct Piece {
        std::string text;
        bool nullable;
    };

    bool oneIn(size_t chances) { return below(chances) == 0; }
    Piece alternation(int depth);
    Piece wideAlternation(int depth);
    Piece sequence(int depth);
    Piece item(int depth);
    Piece atom(int depth);
    Piece simpleAtom();
    Piece group(int depth);
    Piece capture(int depth);
    Piece lookaround(int depth);
    Piece conditional(int depth);
    Piece reference();
    std::string quantifier(bool bodyNullable, bool& nullable);

    PatternTraits m_traits;
    std::mt19937_64 m_random;
    size_t m_groups = 0;
    bool m_named = false;
};

}  // namespace corvane_tests
