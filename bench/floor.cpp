// The bare scan uses the kernels that the engine is built from, so that the floor is about the engine around
// them, not about another scan.
#include "bench/floor.h"

#include "regexp/seek/kernels.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace corvane_bench {
namespace {

/// Of ASCII and Cyrillic letters, as simple as a floor may be.
char16_t otherCase(char16_t unit) {
    if ((unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z')) {
        return static_cast<char16_t>(unit ^ 0x20U);
    }
    if (unit >= u'\u0410' && unit <= u'\u044F') {
        return static_cast<char16_t>(unit < u'\u0430' ? unit + 0x20 : unit - 0x20);
    }
    return unit;
}

// A unit and, if case is ignored, its other case: what a kernel compares with at once.
RE_Unit_Pair pairOf(char16_t unit, bool ignoreCase) {
    return {unit, ignoreCase ? otherCase(unit) : unit};
}

}  // namespace

Bare_Scan::Bare_Scan(std::u16string_view wanted, bool ignoreCase, std::u16string_view sample)
    : m_literal(wanted), m_ignoreCase(ignoreCase) {
    std::vector<std::size_t> occurrences(0x10000);
    for (const char16_t unit : sample) {
        ++occurrences[unit];
    }
    std::vector<std::size_t> places(wanted.size());
    std::iota(places.begin(), places.end(), 0U);
    // The rarest two units of the literal, by what the very text has; the engine has to guess from a table.
    std::stable_sort(places.begin(), places.end(), [&](std::size_t one, std::size_t other) {
        return occurrences[wanted[one]] < occurrences[wanted[other]];
    });
    m_first = places.front();
    m_second = places.size() > 1 ? places[1] : places.front();
}

// The units that the scan has compared are compared again: simple, and rare.
bool Bare_Scan::standsAt(const char16_t* p) const {
    if (!m_ignoreCase) {
        return m_literal == std::u16string_view(p, m_literal.size());
    }
    return std::equal(m_literal.begin(), m_literal.end(), p,
                      [](char16_t wanted, char16_t unit) { return pairOf(wanted, true).holds(unit); });
}

std::size_t Bare_Scan::count(std::u16string_view text) const {
    if (text.size() < m_literal.size()) {
        return 0;
    }
    const RE_Literal_Probe probe{pairOf(m_literal[m_first], m_ignoreCase),
                                 pairOf(m_literal[m_second], m_ignoreCase), m_first, m_second};
    // Past the last place at which the literal fits: the kernels may read the units after it.
    const char16_t* const end = text.data() + (text.size() - m_literal.size() + 1);
    std::size_t count = 0;
    const char16_t* p = text.data();
    while (p < end) {
        p = m_literal.size() == 1 ? findUnit(p, end, probe.first) : findProbe(p, end, probe);
        if (p < end && standsAt(p)) {
            ++count;
            p += m_literal.size();
        } else {
            ++p;
        }
    }
    return count;
}

}  // namespace corvane_bench
