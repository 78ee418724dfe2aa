// Searching for a literal: two or three of its units, chosen to be rare, are scanned for, and the whole is
// compared where they are met.
//
// A search holds no text. The literal is passed with each call and must be the one that the search was made
// for: its units are known by their distances from the start.
#pragma once

#include "regexp/seek/kernels.h"

#include <cstddef>
#include <cstring>

class RE_Scan_Monitor;

/// Whether two texts of `length` units are equal. Most texts of patterns are short, or differ in their first
/// units: eight are compared without a call.
inline bool equalUnits(const char16_t* one, const char16_t* other, std::size_t length) {
    static constexpr std::size_t few = 8;
    const std::size_t first = length < few ? length : few;
    for (std::size_t i = 0; i < first; ++i) {
        if (one[i] != other[i]) {
            return false;
        }
    }
    return length <= few || std::memcmp(one + few, other + few, (length - few) * sizeof(char16_t)) == 0;
}

/// The text of a literal with its way of comparing. Does not own the text. Never empty.
struct CORVANE_REGEXP_EXPORT RE_Literal {
    const char16_t* text;  ///< in lower case when case is ignored
    std::size_t length;    ///< at least 1
    bool ignoreCase;

    /// Whether it is at `p`. `length` units from `p` on must be readable.
    bool matchesAt(const char16_t* p) const { return ignoreCase ? foldsTo(p) : equalUnits(p, text, length); }

private:
    bool foldsTo(const char16_t* p) const;
};

/// How to look for one literal. Read-only once it is made. Holds no text, so it may be made before the
/// literal has found its place.
class CORVANE_REGEXP_EXPORT RE_Literal_Search {
public:
    explicit RE_Literal_Search(const RE_Literal& literal);

    /// First occurrence of the literal in [p, end), or null.
    const char16_t* find(const RE_Literal& literal, const char16_t* p, const char16_t* end,
                         RE_Scan_Monitor& monitor) const;
    /// Last occurrence that starts in [p, p + count] and ends by `end`, or null.
    const char16_t* findLast(const RE_Literal& literal, const char16_t* p, std::size_t count,
                             const char16_t* end, RE_Scan_Monitor& monitor) const;

    /// The units to scan for; null when each position is compared, as every unit has more than two forms.
    const RE_Literal_Probe* rarest() const { return probes ? &probe : nullptr; }

    /// The share of the positions of ordinary text at which its units are met, as far as two of them tell.
    double likelihood() const;

private:
    RE_Literal_Probe probeFor(const RE_Literal& literal) const;

    bool probes = false;  ///< without it every position is compared
    RE_Literal_Probe probe{};
};
