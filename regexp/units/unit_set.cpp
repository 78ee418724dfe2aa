// Sets by words of 64 units, and the tables of the host's answers.
//
// Each operation on sets keeps `varied` as low as is cheap, and never too low. "Unlike" words are those
// before it, which may differ from the last word.
#include "regexp/units/unit_set.h"

#include "host/unit_class.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstring>
#include <iterator>

// A range that reaches the last unit makes all words after its first one ones, so those no longer vary.
void RE_Unit_Set::addRange(char16_t low, char16_t high) {
    if (low > high) {
        return;
    }
    const std::size_t first = low / 64;
    const std::size_t last = high / 64;
    const std::uint64_t fromLow = ~std::uint64_t{0} << (low % 64);
    const std::uint64_t toHigh = ~std::uint64_t{0} >> (63 - high % 64);
    if (first == last) {
        words[first] |= fromLow & toHigh;
    } else {
        words[first] |= fromLow;
        std::fill(words + first + 1, words + last, ~std::uint64_t{0});
        words[last] |= toHigh;
    }
    varied = high == unitCount - 1 ? first + 1 : std::max(varied, last + 1);
}

// The two words may differ from the rest afterwards; whether they do is not tested, as `varied` need not be
// exact.
void RE_Unit_Set::add(const RE_Low_Units& units) {
    for (std::size_t i = 0; i < units.words.size(); ++i) {
        words[i] |= units.words[i];
    }
    varied = std::max(varied, units.words.size());
}

void RE_Unit_Set::remove(const RE_Low_Units& units) {
    for (std::size_t i = 0; i < units.words.size(); ++i) {
        words[i] &= ~units.words[i];
    }
    varied = std::max(varied, units.words.size());
}

// Writes all words, also those of a set without a value. The last word is never unlike itself.
void RE_Unit_Set::assign(const RE_Unit_Set& other, bool negated) {
    const std::uint64_t turned = negated ? ~std::uint64_t{0} : 0;
    const std::uint64_t others = other.rest() ^ turned;
    const std::size_t unlike = std::min(other.varied, wordCount - 1);
    for (std::size_t i = 0; i < unlike; ++i) {
        words[i] = other.words[i] ^ turned;
    }
    std::fill(words + unlike, words + wordCount, others);
    varied = other.varied;
}

void RE_Unit_Set::assign(const RE_Low_Units& units, bool negated) {
    const std::uint64_t turned = negated ? ~std::uint64_t{0} : 0;
    std::transform(units.words.begin(), units.words.end(), words,
                   [turned](std::uint64_t word) { return word ^ turned; });
    std::memset(words + units.words.size(), negated ? 0xFF : 0, sizeof(words) - sizeof(units.words));
    varied = units.words.size();
}

// `fills`: the other set holds all units from some word on. `full`: this one does. In either case the words
// from there on are known without a look.
void RE_Unit_Set::addAll(const RE_Unit_Set& other) {
    if (varied == 0 && rest() == 0) {
        assign(other, false);
        return;
    }
    const bool fills = other.varied < wordCount && other.rest() != 0;
    const bool full = varied < wordCount && rest() != 0;
    const std::size_t unlike = fills ? wordCount : other.varied;
    const std::size_t touched =
        full ? std::min(varied, unlike) : unlike;  // the other words hold all units already
    for (std::size_t i = 0; i < touched; ++i) {
        words[i] |= other.words[i];
    }
    if (fills) {
        varied = full ? std::min(varied, other.varied) : other.varied;
    } else if (!full) {
        varied = std::max(varied, other.varied);
    }
}

// Four words a turn: most pairs of sets have nothing in common, and are looked through to the end.
bool RE_Unit_Set::meets(const RE_Unit_Set& other) const {
    // Where one of them has ended the other one meets nothing.
    const bool ends = varied < wordCount && rest() == 0;
    const bool otherEnds = other.varied < wordCount && other.rest() == 0;
    const std::size_t most = comparedWith(other);
    const std::size_t compared = std::min(ends ? varied : most, otherEnds ? other.varied : most);
    const auto common = [&](std::size_t i) { return words[i] & other.words[i]; };
    std::size_t i = 0;
    for (; i + 4 <= compared; i += 4) {
        if ((common(i) | common(i + 1) | common(i + 2) | common(i + 3)) != 0) {
            return true;
        }
    }
    for (; i < compared; ++i) {
        if (common(i) != 0) {
            return true;
        }
    }
    return false;
}

void RE_Unit_Set::negate() {
    const std::uint64_t others = ~rest();
    const std::size_t unlike = std::min(varied, wordCount - 1);
    for (std::size_t i = 0; i < unlike; ++i) {
        words[i] = ~words[i];
    }
    std::fill(words + unlike, words + wordCount, others);
}

// Words from `varied` on are zero already, unless they are ones.
void RE_Unit_Set::clear() {
    std::fill_n(words, rest() != 0 ? wordCount : varied, 0);
    varied = 0;
}

// Looks at all words. Sizes matter when finders are chosen and for labels, never while a search runs.
std::size_t RE_Unit_Set::sizeFrom(std::size_t first) const {
    std::size_t count = 0;
    for (std::size_t word = first / 64; word < wordCount; ++word) {
        count += static_cast<std::size_t>(std::popcount(words[word]));
    }
    return count;
}

// `comparedWith(*this)` words and at least one from `first` on: the words after them repeat the last.
bool RE_Unit_Set::holdsAnyFrom(std::size_t first) const {
    return std::any_of(words + first / 64, words + std::max(first / 64 + 1, comparedWith(*this)),
                       [](std::uint64_t word) { return word != 0; });
}

bool RE_Unit_Set::holdsAllFrom(std::size_t first) const {
    return std::all_of(words + first / 64, words + std::max(first / 64 + 1, comparedWith(*this)),
                       [](std::uint64_t word) { return word + 1 == 0; });
}

// The exact value of `varied`: sets that are equal have the same.
std::size_t RE_Unit_Set::leastVaried() const {
    if (rest() + 1 > 1) {  // neither 0 nor all ones
        return wordCount;
    }
    std::size_t count = varied;
    while (count > 0 && words[count - 1] == rest()) {
        --count;
    }
    return count;
}

std::size_t RE_Unit_Set::hash() const {
    const std::size_t count = leastVaried();
    const auto mix = [](std::uint64_t before, std::uint64_t word) {
        return (std::rotl(before, 7) ^ word) * 0x9E3779B97F4A7C15u;
    };
    // Every fourth word goes the same way: a multiplication need not wait for the one before.
    std::uint64_t ways[4] = {count < wordCount ? rest() : 0};
    std::size_t i = 0;
    for (; i + std::size(ways) <= count; i += std::size(ways)) {
        for (std::size_t way = 0; way < std::size(ways); ++way) {
            ways[way] = mix(ways[way], words[i + way]);
        }
    }
    for (; i < count; ++i) {
        ways[0] = mix(ways[0], words[i]);
    }
    const std::uint64_t mixed = mix(mix(mix(ways[0], ways[1]), ways[2]), ways[3]);
    return static_cast<std::size_t>(mixed ^ (mixed >> 32));
}

// One word past those that vary stands for all the rest of both sets.
bool RE_Unit_Set::operator==(const RE_Unit_Set& other) const {
    return std::equal(words, words + comparedWith(other), other.words);
}

// Filled by whichever thread comes first; the others wait for it. So is every table below.
const RE_Case_Table& RE_Case_Table::get() {
    static const RE_Case_Table table;
    return table;
}

// Stable sorting keeps the units of one form in their order: what is made of them does not depend on the
// library.
RE_Case_Table::RE_Case_Table() {
    for (std::size_t unit = 0; unit < RE_Unit_Set::unitCount; ++unit) {
        lowerOf[unit] = cvu_tolower(static_cast<char16_t>(unit));
        upperOf[unit] = cvu_toupper(static_cast<char16_t>(unit));
        if (isCased(static_cast<char16_t>(unit))) {
            lowerForms.push_back({lowerOf[unit], static_cast<char16_t>(unit)});
            upperForms.push_back({upperOf[unit], static_cast<char16_t>(unit)});
        }
        if (lowerOf[unit] != unit) {
            foldTargets.add(lowerOf[unit]);
        }
    }
    std::stable_sort(lowerForms.begin(), lowerForms.end());
    std::stable_sort(upperForms.begin(), upperForms.end());
}

// A unit without case is in no list and is its own only form.
std::size_t RE_Case_Table::formsWithin(char16_t lowerForm) const {
    const auto [first, last] = std::equal_range(lowerForms.begin(), lowerForms.end(), Form{lowerForm, 0});
    return static_cast<std::size_t>(last - first) + (isCased(lowerForm) ? 0 : 1);
}

// The units whose form lies in the bounds are neighbours in the list.
void RE_Case_Table::addFormsWithin(const Forms& forms, RE_Unit_Set& set, char16_t low, char16_t high) {
    const auto first = std::lower_bound(forms.begin(), forms.end(), Form{low, 0});
    for (auto it = first; it != forms.end() && it->form <= high; ++it) {
        set.add(it->unit);
    }
}

// Units without case are their own forms and in no list.
void RE_Case_Table::addFolding(RE_Unit_Set& set, char16_t low, char16_t high, bool bothForms) const {
    for (std::size_t unit = low; unit <= high; ++unit) {
        if (!isCased(static_cast<char16_t>(unit))) {
            set.add(static_cast<char16_t>(unit));
        }
    }
    addFormsWithin(lowerForms, set, low, high);
    if (bothForms) {
        addFormsWithin(upperForms, set, low, high);
        addFormsOfUnitsWithin(set, low, high);
    }
}

// The forms of a short range are looked up one by one, those of a long one in a walk over all there are.
void RE_Case_Table::addFormsOfUnitsWithin(RE_Unit_Set& set, char16_t low, char16_t high) const {
    constexpr int shortRange = 64;
    const auto add = [&set](char16_t unit) { set.add(unit); };
    if (high - low < shortRange) {
        for (std::size_t unit = low; unit <= high; ++unit) {
            forEachForm(lower(static_cast<char16_t>(unit)), add);
        }
        return;
    }
    for (const Form& each : lowerForms) {
        if (low <= each.unit && each.unit <= high) {
            forEachForm(each.form, add);
        }
    }
}

namespace {

// Set when the tables are complete. A function-local static would be filled by testing whether it is.
std::atomic<const RE_Unit_Classes*> filledClasses = nullptr;

}  // namespace

// Acquires what the constructor has released: a set that is found to be a member is complete.
std::size_t RE_Unit_Classes::numberOf(const RE_Unit_Set& set) {
    const RE_Unit_Classes* const classes = filledClasses.load(std::memory_order_acquire);
    if (classes == nullptr) {
        return count;
    }
    // The members are neighbours in memory and no other set lies among them. An address below the first gives
    // a huge number.
    const std::uintptr_t place =
        reinterpret_cast<std::uintptr_t>(&set) - reinterpret_cast<std::uintptr_t>(&classes->digits);
    return std::min<std::size_t>(place / sizeof(RE_Unit_Set), count);
}

const RE_Unit_Classes& RE_Unit_Classes::get() {
    static const RE_Unit_Classes classes;
    return classes;
}

const RE_Unit_Set& RE_Unit_Classes::allUnits() {
    static const RE_Unit_Set all = [] {
        RE_Unit_Set units;
        units.negate();
        return units;
    }();
    return all;
}

const RE_Unit_Set& RE_Unit_Classes::allOfLine() {
    static const RE_Unit_Set all = [] {
        RE_Unit_Set units;
        units.add(u'\n');
        units.negate();
        return units;
    }();
    return all;
}

// `numberOf` divides by the size of a set.
static_assert(sizeof(RE_Unit_Classes) == RE_Unit_Classes::count * sizeof(RE_Unit_Set));

// The underscore is a word unit whatever the host says. Released last: `numberOf` may be called by other
// threads meanwhile.
RE_Unit_Classes::RE_Unit_Classes() {
    digits.addWhere([](char16_t unit) { return cvu_isdigit(unit); });
    spaces.addWhere([](char16_t unit) { return cvu_isspace(unit); });
    words.addWhere([](char16_t unit) { return cvu_isalnum(unit) || unit == u'_'; });
    noDigits = digits;
    noDigits.negate();
    noSpaces = spaces;
    noSpaces.negate();
    noWords = words;
    noWords.negate();
    filledClasses.store(this, std::memory_order_release);
}
