// The table of shares, and sums over it.
//
// The numbers come from English prose. What matters is their order, and that letters, digits and punctuation
// differ by magnitudes; a precise count would make no other choice.
#include "regexp/units/likelihood.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <string_view>

namespace {

constexpr double rareLetter = 0.002;
constexpr double other = 0.001;

// Units in the order of their frequency, with their shares; those that are not listed are rare. Units beyond
// ASCII count as fairly common one by one, since a text that holds any mostly holds many of its neighbours.
constexpr std::array<double, 0x80> asciiLikelihoods() {
    constexpr std::u16string_view order = u" etaoinshrdlu\ncmfwypvbgk,.";
    constexpr double shares[] = {0.17,  0.10,  0.075, 0.065, 0.062, 0.057, 0.057, 0.053, 0.050,
                                 0.048, 0.034, 0.033, 0.023, 0.020, 0.020, 0.020, 0.018, 0.018,
                                 0.016, 0.014, 0.008, 0.012, 0.016, 0.006, 0.012, 0.010};
    std::array<double, 0x80> table{};
    for (std::size_t unit = 0; unit < table.size(); ++unit) {
        const bool letter = (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
        const bool digit = unit >= u'0' && unit <= u'9';
        table[unit] = letter ? rareLetter : digit ? 2 * rareLetter : other;
    }
    for (std::size_t place = 0; place < order.size(); ++place) {
        table[order[place]] = shares[place];
    }
    return table;
}

constexpr std::array<double, 0x80> ascii = asciiLikelihoods();
/// Sums of the shares of four neighbouring units, by which of the four a set holds. A set of 128 units is
/// summed by 32 look-ups at most in place of 128 additions; passes sum many sets.
using Fours = std::array<std::array<double, 16>, ascii.size() / 4>;

constexpr Fours fours = [] {
    Fours sums{};
    for (std::size_t four = 0; four < sums.size(); ++four) {
        for (std::size_t held = 0; held < 16; ++held) {
            for (std::size_t i = 0; i < 4; ++i) {
                sums[four][held] += (held >> i & 1) != 0 ? ascii[4 * four + i] : 0;
            }
        }
    }
    return sums;
}();

/// Passes over groups of four that hold no unit.
double sumOfFours(std::uint64_t bits, const std::array<double, 16>* sums) {
    double sum = 0;
    while (bits != 0) {
        const auto four = static_cast<std::size_t>(std::countr_zero(bits)) / 4;
        sum += sums[four][bits >> (4 * four) & 0xF];
        bits &= ~(std::uint64_t{0xF} << (4 * four));
    }
    return sum;
}

// Of one unit beyond ASCII. Higher than of a rare ASCII letter: see above.
constexpr double foreignLetter = 0.005;
constexpr double commonForeignLetter = 0.01;

double summedLikelihood(const RE_Unit_Set& set) {
    return asciiLikelihood(set.bits(0), set.bits(1)) +
           (set.holdsAnyFrom(ascii.size()) ? beyondLatinLikelihood : 0);
}

}  // namespace

double unitLikelihood(char16_t unit) {
    if (unit < ascii.size()) {
        return ascii[unit];
    }
    // The commonest letters of Cyrillic prose.
    static constexpr std::u16string_view common =
        u"\u043E\u0435\u0430\u0438\u043D\u0442\u0441\u0440\u0432\u043B";
    return common.find(unit) != common.npos ? commonForeignLetter : foreignLetter;
}

double asciiLikelihood(std::uint64_t low, std::uint64_t high) {
    return sumOfFours(low, fours.data()) + sumOfFours(high, fours.data() + fours.size() / 2);
}

double setLikelihood(const RE_Unit_Set& set) {
    const std::size_t number = RE_Unit_Classes::numberOf(set);
    if (number == RE_Unit_Classes::count) {
        return summedLikelihood(set);
    }
    static const auto ofClasses = [] {
        std::array<double, RE_Unit_Classes::count> all{};
        std::ranges::transform(RE_Unit_Classes::get().all(), all.begin(),
                               [](const RE_Unit_Set* units) { return summedLikelihood(*units); });
        return all;
    }();
    return ofClasses[number];
}
