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

void RE_Unit_Set::addWithin(const RE_Unit_Set& other, char16_t low, char16_t high) {
    const std::size_t first = low / 64;
    const std::size_t last = high / 64;
    extend(last + 1);
    for (std::size_t i = first; i <= last; ++i) {
        const std::uint64_t from = i == first ? allOnes << (low % 64) : allOnes;
        const std::uint64_t to = i == last ? allOnes >> (63 - high % 64) : allOnes;
        words[i] |= other.bits(i) & from & to;
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
    // Eight at a time, which takes vectors: sets of a few units far up have hundreds of empty words before them.
    constexpr std::size_t together = 8;
    std::size_t i = 0;
    for (; i + together <= shorter.stored; i += together) {
        std::uint64_t common = 0;
        for (std::size_t j = i; j < i + together; ++j) {
            common |= words[j] & other.words[j];
        }
        if (common != 0) {
            return true;
        }
    }
    for (; i < shorter.stored; ++i) {
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
    // The count tells sets apart that are the same but for the number of empty words before their first unit.
    const std::size_t count = leastVaried();
    const auto mix = [](std::uint64_t before, std::uint64_t word) {
        return (std::rotl(before, 7) ^ word) * 0x9E3779B97F4A7C15u;
    };
    // Every fourth word goes the same way: a multiplication need not wait for the one before.
    std::uint64_t ways[4] = {count < wordCount ? bits(wordCount - 1) : 0, count};
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
    listMates();
    // What a unit is, as a number: the same numbers are the same property.
    const auto noteChanges = [](Changes& changes, auto property) {
        for (std::size_t unit = 1; unit < RE_Unit_Set::unitCount; ++unit) {
            if (property(static_cast<char16_t>(unit)) != property(static_cast<char16_t>(unit - 1))) {
                changes.at.push_back(static_cast<char16_t>(unit));
            }
        }
    };
    constexpr int noDistance = static_cast<int>(RE_Unit_Set::unitCount);
    noteChanges(alone, [this](char16_t unit) { return foldsAlone(unit); });
    noteChanges(lowerCase, [](char16_t unit) { return cvu_islower(unit); });
    noteChanges(upperCase,
                [this](char16_t unit) { return cvu_isupper(unit) ? lower(unit) - unit : noDistance; });
}

// By the definition of `addFolding`: those of which a form is the unit, and those with the same lower-case form.
void RE_Case_Table::listMates() {
    for (std::size_t at = 0; at < RE_Unit_Set::unitCount; ++at) {
        const auto unit = static_cast<char16_t>(at);
        if (!isCased(unit)) {
            uncased.add(unit);
            continue;
        }
        mates.push_back({lower(unit), unit});
        mates.push_back({upper(unit), unit});
        forEachForm(lower(unit), [this, unit](char16_t other) { mates.push_back({unit, other}); });
    }
    std::erase_if(mates, [](const Mate& mate) { return mate.unit == mate.other; });
    std::ranges::sort(mates);
    mates.erase(std::unique(mates.begin(), mates.end()), mates.end());
    for (std::size_t i = 0; i < mates.size(); ++i) {
        const auto [low, high] = std::minmax(mates[i].unit, mates[i].other);
        if (i == 0 || mates[i].unit / 64 != mates[i - 1].unit / 64) {
            matedBlocks.push_back({i, low, high});
        }
        Mated_Block& block = matedBlocks.back();
        block.low = std::min(block.low, low);
        block.high = std::max(block.high, high);
    }
}

bool RE_Case_Table::areLower(char16_t low, char16_t high) const {
    return cvu_islower(low) && !lowerCase.changesWithin(low, high);
}

bool RE_Case_Table::areUpperAlike(char16_t low, char16_t high) const {
    return cvu_isupper(low) && !upperCase.changesWithin(low, high);
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

// Units without case are their own forms. With both forms each unit of the range is in, and its mates: those of a block that
// lies in the range with all its mates are in already, so that only few blocks are looked into.
void RE_Case_Table::addFolding(RE_Unit_Set& set, char16_t low, char16_t high, bool bothForms) const {
    if (low > high) {
        return;
    }
    if (!bothForms) {
        set.addWithin(uncased, low, high);
        addFormsWithin(lowerForms, set, low, high);
        return;
    }
    set.addRange(low, high);
    const auto isBefore = [this](const Mated_Block& block, std::size_t number) {
        return mates[block.first].unit / std::size_t{64} < number;
    };
    auto block = std::lower_bound(matedBlocks.begin(), matedBlocks.end(), std::size_t{low} / 64, isBefore);
    for (; block != matedBlocks.end() && mates[block->first].unit / 64 <= high / 64; ++block) {
        if (low <= block->low && block->high <= high) {
            continue;
        }
        const std::size_t end = block + 1 != matedBlocks.end() ? block[1].first : mates.size();
        for (std::size_t i = block->first; i < end; ++i) {
            if (low <= mates[i].unit && mates[i].unit <= high) {
                set.add(mates[i].other);
            }
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
