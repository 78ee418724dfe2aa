// Sets by words of 64 units, and the tables of the host's answers.
//
// Trap: a set that stores all words has no word for the rest; what is after them may be read and has no meaning.
#include "regexp/units/unit_set.h"

#include "host/unit_class.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <iterator>

namespace {

constexpr std::uint64_t allOnes = ~std::uint64_t{0};

}  // namespace

// Few sizes, so that a set that grows unit by unit is seldom copied.
void RE_Unit_Set::reserve(std::size_t count) {
    if (count <= room) {
        return;
    }
    const std::size_t more = count <= 16 ? 16 : count <= 256 ? 256 : wordCount;
    auto* const larger = static_cast<std::uint64_t*>(reAllocate((more + 1) * sizeof(std::uint64_t)));
    std::copy_n(words, stored + 1, larger);
    larger[more] = 0;
    release();
    words = larger;
    isBorrowed = false;
    room = static_cast<std::uint32_t>(more);
}

// Stores so many words at least. The set is the same.
void RE_Unit_Set::extend(std::size_t count) {
    if (count > stored) {
        reserve(count);
        std::fill(words + stored + 1, words + count + 1, rest());
        stored = static_cast<std::uint32_t>(count);
    }
}

// A range that reaches the last unit makes all words after its first one ones.
void RE_Unit_Set::addRange(char16_t low, char16_t high) {
    if (low > high) {
        return;
    }
    const std::size_t first = low / 64;
    const std::size_t last = high / 64;
    const std::uint64_t fromLow = allOnes << (low % 64);
    const std::uint64_t toHigh = allOnes >> (63 - high % 64);
    if (high == unitCount - 1) {
        extend(first + 1);
        words[first] |= fromLow;
        if (first + 1 < wordCount) {
            stored = static_cast<std::uint32_t>(first + 1);
            words[stored] = allOnes;
        }
        return;
    }
    extend(last + 1);
    if (first == last) {
        words[first] |= fromLow & toHigh;
    } else {
        words[first] |= fromLow;
        std::fill(words + first + 1, words + last, allOnes);
        words[last] |= toHigh;
    }
}

void RE_Unit_Set::add(const RE_Low_Units& units) {
    extend(units.words.size());
    for (std::size_t i = 0; i < units.words.size(); ++i) {
        words[i] |= units.words[i];
    }
}

void RE_Unit_Set::remove(const RE_Low_Units& units) {
    extend(units.words.size());
    for (std::size_t i = 0; i < units.words.size(); ++i) {
        words[i] &= ~units.words[i];
    }
}

void RE_Unit_Set::assign(const RE_Unit_Set& other, bool negated) {
    const std::uint64_t turned = negated ? allOnes : 0;
    clear();
    reserve(other.stored);
    stored = other.stored;
    for (std::size_t i = 0; i <= stored; ++i) {
        words[i] = other.words[i] ^ turned;
    }
}

void RE_Unit_Set::assign(const RE_Low_Units& units, bool negated) {
    const std::uint64_t turned = negated ? allOnes : 0;
    stored = static_cast<std::uint32_t>(units.words.size());
    std::transform(units.words.begin(), units.words.end(), words,
                   [turned](std::uint64_t word) { return word ^ turned; });
    words[stored] = turned;
}

// Where either set holds all units from some word on, the words from there on are known without a look.
void RE_Unit_Set::addAll(const RE_Unit_Set& other) {
    const bool isFull = !storesAll() && rest() != 0;
    const bool fills = !other.storesAll() && other.rest() != 0;
    if (!isFull) {
        extend(other.stored);
    }
    const std::size_t common = std::min(stored, other.stored);
    for (std::size_t i = 0; i < common; ++i) {
        words[i] |= other.words[i];
    }
    if (fills && other.stored <= stored) {
        stored = other.stored;
        words[stored] = allOnes;
    }
}

// Where the set that stores less is empty from there on, nothing more is in both; where it is full, all of the other one is.
bool RE_Unit_Set::meets(const RE_Unit_Set& other) const {
    const RE_Unit_Set& longer = stored < other.stored ? other : *this;
    const RE_Unit_Set& shorter = stored < other.stored ? *this : other;
    for (std::size_t i = 0; i < shorter.stored; ++i) {
        if ((words[i] & other.words[i]) != 0) {
            return true;
        }
    }
    return !shorter.storesAll() && shorter.rest() != 0 &&
           longer.holdsAnyFrom(shorter.stored * std::size_t{64});
}

void RE_Unit_Set::negate() {
    for (std::size_t i = 0; i <= stored; ++i) {
        words[i] = ~words[i];
    }
}

// Sizes matter when finders are chosen and for labels, never while a search runs.
std::size_t RE_Unit_Set::sizeFrom(std::size_t first) const {
    std::size_t count = 0;
    for (std::size_t word = first / 64; word < stored; ++word) {
        count += static_cast<std::size_t>(std::popcount(words[word]));
    }
    const std::size_t others = wordCount - std::max<std::size_t>(stored, first / 64);
    return count + (storesAll() || rest() == 0 ? 0 : others * 64);
}

bool RE_Unit_Set::holdsAnyFrom(std::size_t first) const {
    const std::size_t begin = std::min<std::size_t>(first / 64, stored);
    return (!storesAll() && rest() != 0) ||
           std::any_of(words + begin, words + stored, [](std::uint64_t word) { return word != 0; });
}

bool RE_Unit_Set::holdsAllFrom(std::size_t first) const {
    const std::size_t begin = std::min<std::size_t>(first / 64, stored);
    return (storesAll() || rest() != 0) &&
           std::all_of(words + begin, words + stored, [](std::uint64_t word) { return word == allOnes; });
}

// The least number of words that can be stored: sets that are equal have the same.
std::size_t RE_Unit_Set::leastVaried() const {
    const std::uint64_t last = bits(wordCount - 1);
    if (last != 0 && last != allOnes) {
        return wordCount;
    }
    std::size_t count = stored;
    while (count > 0 && words[count - 1] == last) {
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
    std::uint64_t ways[4] = {count < wordCount ? bits(wordCount - 1) : 0};
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

bool RE_Unit_Set::operator==(const RE_Unit_Set& other) const {
    const RE_Unit_Set& longer = stored < other.stored ? other : *this;
    const RE_Unit_Set& shorter = stored < other.stored ? *this : other;
    const std::uint64_t last = shorter.bits(wordCount - 1);
    return std::equal(words, words + shorter.stored, other.words) &&
           std::all_of(longer.words + shorter.stored, longer.words + longer.stored,
                       [last](std::uint64_t word) { return word == last; }) &&
           longer.bits(wordCount - 1) == last;
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
    static Storage storage;
    static const RE_Unit_Classes classes(storage);
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
RE_Unit_Classes::RE_Unit_Classes(Storage& storage)
    : digits(storage[0]),
      spaces(storage[1]),
      words(storage[2]),
      noDigits(storage[3]),
      noSpaces(storage[4]),
      noWords(storage[5]) {
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
