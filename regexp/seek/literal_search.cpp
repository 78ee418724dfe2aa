// How the units of a probe are chosen, and the scans with it.
#include "regexp/seek/literal_search.h"

#include "regexp/seek/scan.h"
#include "regexp/units/likelihood.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

/// Adds the other case of a literal's unit, where there is one. False when more than two units fold to it:
/// comparing with two of them would miss the others.
bool findForms(RE_Unit_Pair& units) {
    const RE_Case_Table& cases = RE_Case_Table::get();
    const char16_t upper = cases.upper(units.one);
    const bool isOther = upper != units.one && cases.lower(upper) == units.one;
    units.other = isOther ? upper : units.one;
    return cases.formsWithin(units.one) <= (isOther ? 2U : 1U);
}

/// Either form counts.
double pairLikelihood(const RE_Unit_Pair& units) {
    return units.one == units.other ? unitLikelihood(units.one)
                                    : unitLikelihood(units.one) + unitLikelihood(units.other);
}

/// Where two units are met together more often than this a third is worth its comparison. It always is for
/// texts of three units, which are decided by it.
constexpr double frequent = 1.0 / 2000;

struct Place {
    RE_Unit_Pair units;
    std::size_t at;
    double likelihood;
};

/// Inserts a place among the three rarest so far, the rarest first. Of equally rare ones the earlier stays in
/// front.
void note(const Place& place, std::array<Place, 3>& rarest, std::size_t& count) {
    std::size_t rank = count;
    while (rank > 0 && place.likelihood < rarest[rank - 1].likelihood) {
        --rank;
    }
    if (rank < rarest.size()) {
        count = std::min(count + 1, rarest.size());
        std::copy_backward(rarest.begin() + rank, rarest.begin() + count - 1, rarest.begin() + count);
        rarest[rank] = place;
    }
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

// Looks at the first units only: they are enough to find rare ones, and preparing stays cheap. A literal of
// one unit is probed for it twice, as the scan always compares two.
RE_Literal_Search::RE_Literal_Search(const RE_Literal& literal) {
    static constexpr std::size_t longestLookedAt = 64;
    std::array<Place, 3> rarest;
    std::size_t count = 0;
    for (std::size_t i = 0; i < literal.length && i < longestLookedAt; ++i) {
        RE_Unit_Pair units{literal.text[i], literal.text[i]};
        if (!literal.ignoreCase || findForms(units)) {
            note({units, i, pairLikelihood(units)}, rarest, count);
        }
    }
    if (count == 0) {
        return;
    }
    const Place& second = rarest[count > 1 ? 1 : 0];
    probes = true;
    probe.first = rarest[0].units;
    probe.firstAt = rarest[0].at;
    probe.second = second.units;
    probe.secondAt = second.at;
    const bool isFrequent = rarest[0].likelihood * rarest[1].likelihood > frequent;
    probe.hasThird = count > 2 && (literal.length == rarest.size() || isFrequent);
    if (probe.hasThird) {
        probe.third = rarest[2].units;
        probe.thirdAt = rarest[2].at;
    }
}

// As if units were independent of each other. They are not, but literals are compared with each other by it
// only.
double RE_Literal_Search::likelihood() const {
    if (!probes) {
        return 1;
    }
    const double first = pairLikelihood(probe.first);
    return probe.firstAt == probe.secondAt ? first : first * pairLikelihood(probe.second);
}

// Where case counts the scan compares the text as well: returning for each candidate would cost more than the
// comparison.
RE_Literal_Probe RE_Literal_Search::probeFor(const RE_Literal& literal) const {
    RE_Literal_Probe whole = probe;
    if (probes && !literal.ignoreCase) {
        whole.text = literal.text;
        whole.length = literal.length;
    }
    return whole;
}

const char16_t* RE_Literal_Search::find(const RE_Literal& literal, const char16_t* p, const char16_t* end,
                                        RE_Scan_Monitor& monitor) const {
    if (static_cast<std::size_t>(end - p) < literal.length) {
        return nullptr;
    }
    const char16_t* const startsEnd = end - literal.length + 1;
    const RE_Literal_Probe whole = probeFor(literal);
    return scanForward(p, startsEnd, monitor, [&](const char16_t* at, const char16_t* stop) {
        for (;; ++at) {
            at = probes ? findProbe(at, stop, whole) : at;
            if (at == stop || whole.text != nullptr || literal.matchesAt(at)) {
                return at;
            }
        }
    });
}

// Backward the scan does not know the text: it is compared here.
const char16_t* RE_Literal_Search::findLast(const RE_Literal& literal, const char16_t* p, std::size_t count,
                                            const char16_t* end, RE_Scan_Monitor& monitor) const {
    if (static_cast<std::size_t>(end - p) < literal.length) {
        return nullptr;
    }
    const std::size_t places = static_cast<std::size_t>(end - p) - literal.length + 1;
    const char16_t* const startsEnd = p + std::min(places, count + 1);
    return scanBackward(p, startsEnd, monitor,
                        [&](const char16_t* from, const char16_t* at) -> const char16_t* {
                            while (from < at) {
                                at = probes ? findLastProbe(from, at, probe) : at - 1;
                                if (at == nullptr || literal.matchesAt(at)) {
                                    return at;
                                }
                            }
                            return nullptr;
                        });
}
