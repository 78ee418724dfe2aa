// Searching for a literal: two of its units, chosen to be rare, are looked for first, then the whole is
// compared.
#pragma once

#include "regexp/seek/kernels.h"

#include <cstddef>
#include <cstring>

class RE_Scan_Monitor;

/// Compares two texts of one length. Most texts of patterns are short, or differ at once.
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

/// The text of a literal with its way of comparing. Does not own the text.
struct CORVANE_REGEXP_EXPORT RE_Literal {
    const char16_t* text;  ///< in lower case when case is ignored
    std::size_t length;    ///< at least 1
    bool ignoreCase;

    bool matchesAt(const char16_t* p) const { return ignoreCase ? foldsTo(p) : equalUnits(p, text, length); }

private:
    bool foldsTo(const char16_t* p) const;
};

/// How to look for a literal. Holds no text, so it may be made before the literal has found its place.
class CORVANE_REGEXP_EXPORT RE_Literal_Search {
public:
    explicit RE_Literal_Search(const RE_Literal& literal);

    /// First occurrence of the literal in [p, end), or null.
    const char16_t* find(const RE_Literal& literal, const char16_t* p, const char16_t* end,
                         RE_Scan_Monitor& monitor) const;
    /// Last occurrence that starts in [p, p + count] and ends by `end`, or null.
    const char16_t* findLast(const RE_Literal& literal, const char16_t* p, std::size_t count, const char16_t* end,
                             RE_Scan_Monitor& monitor) const;

    /// The units to look for; null when every position is compared.
    const RE_Literal_Probe* rarest() const { return probes ? &probe : nullptr; }

    /// The share of the positions of ordinary text at which its two units stand.
    double likelihood() const;

private:
    RE_Literal_Probe probeFor(const RE_Literal& literal) const;

    bool probes = false;  ///< without it every position is compared
    RE_Literal_Probe probe{};
};
