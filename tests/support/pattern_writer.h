// Writes random patterns: draws rows of the tables, fills their gaps, and knows what is in force at each place. What it
// writes is well-formed, except for what a row degrades to on purpose.
#pragma once

#include "tests/support/pattern_constructs.h"

#include <random>
#include <set>
#include <string>
#include <string_view>

namespace corvane_tests {

/// Counts which constructs were written in which contexts, at any depth. Constructs are numbered through both
/// tables, leaves first.
class Coverage {
public:
    Coverage();

    size_t constructs() const { return m_constructs; }
    size_t contexts() const { return m_counts.size() / m_constructs; }
    static const Construct& construct(size_t number);
    static bool isPossible(size_t construct, size_t context);

    void note(size_t construct, size_t context) { ++m_counts[context * m_constructs + construct]; }
    size_t count(size_t construct, size_t context) const { return m_counts[context * m_constructs + construct]; }

private:
    size_t m_constructs;
    std::vector<unsigned> m_counts;
};

/// A piece of a pattern.
struct Piece {
    std::u16string text;
    bool nullable = true;  ///< may match the empty text; true when unsure
    bool isAtom = false;   ///< a quantifier after it takes hold of all of it
    bool hasBar = false;   ///< that divides what it is put into
};

class PatternWriter {
public:
    /// Modes are flag bits. Nothing that has one of the traits `without` is written. A dense pattern has little
    /// but what is asked for, over two letters.
    PatternWriter(std::mt19937_64& random, Coverage& coverage, unsigned modes, unsigned without, bool dense = false);

    /// A whole pattern of what chance brings.
    std::u16string pattern();
    /// A whole pattern with what is wanted: the first of the lists is one context, within which the constructs
    /// of the next list stand, within the last of which those of the next, and so on.
    std::u16string pattern(std::vector<std::vector<size_t>> wanted);
    /// The constructs side by side.
    std::u16string row(const std::vector<size_t>& constructs);

private:
    class Row;

    size_t below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(m_random); }
    bool oneIn(size_t chances) { return below(chances) == 0; }
    bool hasMode(unsigned bit) const { return (m_modes & bit) != 0; }
    bool allows(const Construct& row) const { return (row.traits & m_without) == 0; }

    // Draws of falling depth: contexts are written while there is some left, leaves at the end.
    Piece alternation(int depth);
    Piece wideAlternation(int depth);
    Piece sequence(int depth);
    Piece item(int depth);
    Piece few();
    size_t someLeaf();
    size_t someContext();
    size_t someRow(const std::vector<Construct>& rows, size_t usual);

    Piece write(size_t construct, int depth);
    Piece body(size_t context, int depth);
    Piece wantedBody();
    void noteDrawn(size_t construct);
    void append(Piece& piece, const Piece& next);
    std::u16string spacing();
    std::u16string finish(std::u16string text);
    std::u16string groupNumber(bool later);
    std::u16string knownName();
    std::u16string newName();
    void defineName(const std::u16string& name);

    std::mt19937_64& m_random;
    Coverage& m_coverage;
    unsigned m_modes;
    unsigned m_without;
    bool m_dense;
    bool m_makesTokens = true;  // not in dynamic texts
    bool m_isRead = true;       // not in what is dropped because nothing may be evaluated
    size_t m_groups = 0;
    std::set<std::u16string> m_names;
    std::set<std::u16string> m_namesDue;        // referred to, and not yet the name of a group
    std::vector<size_t> m_inside;               // contexts, from the outermost on
    std::vector<std::vector<size_t>> m_wanted;  // what the next bodies have to contain, the next one last
};

/// The text in which every character stands for itself once a dynamic text has been put together.
std::u16string asDynamicText(std::u16string_view pattern);

}  // namespace corvane_tests
