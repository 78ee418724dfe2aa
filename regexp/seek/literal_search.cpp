#include "regexp/seek/literal_search.h"

#include "regexp/search_info.h"
#include "regexp/seek/likelihood.h"
#include "regexp/seek/scan.h"

#include <string_view>

namespace {

/// Adds the other unit that stands for the one of a literal, where there is one. False when there are more than two.
bool findForms(RE_Unit_Pair& units) {
    const RE_Case_Table& cases = RE_Case_Table::get();
    const char16_t upper = cases.upper(units.one);
    const bool isOther = upper != units.one && cases.lower(upper) == units.one;
    units.other = isOther ? upper : units.one;
    return cases.formsWithin(units.one) <= (isOther ? 2U : 1U);
}

double pairLikelihood(const RE_Unit_Pair& units) {
    return units.one == units.other ? unitLikelihood(units.one)
                                    : unitLikelihood(units.one) + unitLikelihood(units.other);
}

}  // namespace

bool RE_Literal::foldsTo(const char16_t* p) const {
    const RE_Case_Table& cases = RE_Case_Table::get();
    for (std::size_t i = 0; i < length; ++i) {
        if (cases.lower(p[i]) != text[i]) {
            return false;
        }
    }
    return true;
}

// The two rarest units, the earlier ones of equals. A literal of one unit is probed for it twice.
RE_Literal_Search::RE_Literal_Search(const RE_Literal& literal) {
    static constexpr std::size_t longestLookedAt = 64;
    double best = 0;
    double second = 0;
    for (std::size_t i = 0; i < literal.length && i < longestLookedAt; ++i) {
        RE_Unit_Pair units{literal.text[i], literal.text[i]};
        if (literal.ignoreCase && !findForms(units)) {
            continue;
        }
        const double common = pairLikelihood(units);
        if (!probes || common < best) {
            probe.second = probes ? probe.first : units;
            probe.secondAt = probes ? probe.firstAt : i;
            second = probes ? best : common;
            probe.first = units;
            probe.firstAt = i;
            best = common;
            probes = true;
        } else if (probe.secondAt == probe.firstAt || common < second) {
            probe.second = units;
            probe.secondAt = i;
            second = common;
        }
    }
}

double RE_Literal_Search::likelihood() const {
    if (!probes) {
        return 1;
    }
    const double first = pairLikelihood(probe.first);
    return probe.firstAt == probe.secondAt ? first : first * pairLikelihood(probe.second);
}

// The scan compares the text itself where that is done unit by unit.
RE_Literal_Probe RE_Literal_Search::probeFor(const RE_Literal& literal) const {
    RE_Literal_Probe whole = probe;
    if (probes && !literal.ignoreCase) {
        whole.text = literal.text;
        whole.length = literal.length;
    }
    return whole;
}

const char16_t* RE_Literal_Search::find(const RE_Literal& literal, const char16_t* p,
                                        RE_Search_Info& info) const {
    if (static_cast<std::size_t>(info.subjectEnd - p) < literal.length) {
        return nullptr;
    }
    const char16_t* const end = info.subjectEnd - literal.length + 1;
    const RE_Literal_Probe whole = probeFor(literal);
    return scanForward(p, end, info, [&](const char16_t* at, const char16_t* stop) {
        for (;; ++at) {
            at = probes ? findProbe(at, stop, whole) : at;
            if (at == stop || whole.text != nullptr || literal.matchesAt(at)) {
                return at;
            }
        }
    });
}

const char16_t* RE_Literal_Search::findLast(const RE_Literal& literal, const char16_t* p, std::size_t count,
                                            RE_Search_Info& info) const {
    if (static_cast<std::size_t>(info.subjectEnd - p) < literal.length) {
        return nullptr;
    }
    const std::size_t places = static_cast<std::size_t>(info.subjectEnd - p) - literal.length + 1;
    const char16_t* const end = p + std::min(places, count + 1);
    return scanBackward(p, end, info, [&](const char16_t* from, const char16_t* at) -> const char16_t* {
        while (from < at) {
            at = probes ? findLastProbe(from, at, probe) : at - 1;
            if (at == nullptr || literal.matchesAt(at)) {
                return at;
            }
        }
        return nullptr;
    });
}
