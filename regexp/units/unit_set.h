// Exact sets of UTF-16 code units, and the host's case mapping and classes as tables.
//
// The tables are filled from the host's functions once per process, so the match loop never calls the host. A
// host must therefore answer the same for a unit each time.
//
// A surrogate pair is two units here as everywhere in the engine: sets know nothing of code points.
#pragma once

#include "regexp/base/memory.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

/// The units below 0x80 of a set, one bit each. Most sets of patterns are made of these alone: they are
/// gathered here, and a whole set is made once.
struct RE_Low_Units {
    static constexpr std::size_t unitCount = 128;

    void add(char16_t unit) { words[unit / 64] |= std::uint64_t{1} << (unit % 64); }
    /// All units from `low` to `high`, which must be below 0x80 and in this order.
    void addRange(char16_t low, char16_t high) {
        for (std::size_t block = low / 64; block <= high / 64; ++block) {
            const std::uint64_t from =
                block == low / 64 ? ~std::uint64_t{0} << (low % 64) : ~std::uint64_t{0};
            const std::uint64_t to =
                block == high / 64 ? ~std::uint64_t{0} >> (63 - high % 64) : ~std::uint64_t{0};
            words[block] |= from & to;
        }
    }

    template <class Visit>
    void forEach(Visit visit) const {
        for (std::size_t block = 0; block < words.size(); ++block) {
            for (std::uint64_t left = words[block]; left != 0; left &= left - 1) {
                visit(static_cast<char16_t>(64 * block + static_cast<std::size_t>(std::countr_zero(left))));
            }
        }
    }

    std::array<std::uint64_t, unitCount / 64> words{};
};

/// A set of units: one bit for each of the 65,536, as far as they differ. From some place on most sets hold all units or
/// none: words up to that place are stored, and one that stands for all the rest. Sets of ASCII units and their complements
/// lie within the object.
///
/// Invariant: `stored` words are followed by one, which is 0 or all ones, that all further words are equal to; a set that
/// stores all words has none that follows. More words may be stored than necessary: equal sets may differ in it, so comparing
/// and hashing do not depend on it.
class CORVANE_REGEXP_EXPORT RE_Unit_Set : public RE_Memory {
public:
    static constexpr std::size_t unitCount = 0x10000;

    RE_Unit_Set() = default;
    /// An empty set in storage that outlives it: tables of the process are not from the host's memory.
    using Storage = std::array<std::uint64_t, unitCount / 64 + 1>;
    explicit RE_Unit_Set(Storage& storage) : words(storage.data()), room(wordCount), isBorrowed(true) {
        clear();
    }
    RE_Unit_Set(const RE_Unit_Set& other) { assign(other, false); }
    RE_Unit_Set& operator=(const RE_Unit_Set& other) {
        if (this != &other) {
            assign(other, false);
        }
        return *this;
    }
    ~RE_Unit_Set() { release(); }

    /// An empty set to be shared, from the host's memory.
    static std::shared_ptr<RE_Unit_Set> make() {
        return std::allocate_shared<RE_Unit_Set>(RE_Allocator<RE_Unit_Set>());
    }

    /// A comparison, a load and a shift: the match loop does little else with sets.
    bool contains(char16_t unit) const {
        const std::uint32_t wide = unit;  // narrow arithmetic costs an instruction more
        const std::uint32_t block = wide >> 6;
        return (words[block < stored ? block : stored] >> (wide & 63) & 1) != 0;
    }
    void add(char16_t unit) {
        const std::size_t block = unit >> 6;
        if (block >= stored) {
            if (words[stored] != 0) {
                return;
            }
            extend(block + 1);
        }
        words[block] |= std::uint64_t{1} << (unit & 63);
    }
    void addRange(char16_t low, char16_t high);
    /// The units of another set that lie in the range.
    void addWithin(const RE_Unit_Set& other, char16_t low, char16_t high);
    void add(const RE_Low_Units& units);
    void remove(const RE_Low_Units& units);
    /// Makes this the set of the same units, or of those that are not in the other one.
    void assign(const RE_Unit_Set& other, bool negated);
    void assign(const RE_Low_Units& units, bool negated);
    void addAll(const RE_Unit_Set& other);
    void negate();
    void clear() {
        stored = 0;
        words[0] = 0;
    }
    /// Whether some unit is in both. Stops at the first, and where one of the sets has ended.
    bool meets(const RE_Unit_Set& other) const;
    std::size_t size() const { return sizeFrom(0); }
    /// How many units at or above `first` (a multiple of 64) are in the set.
    std::size_t sizeFrom(std::size_t first) const;
    /// Whether any unit at or above `first` (a multiple of 64) is in the set; whether all of them are.
    bool holdsAnyFrom(std::size_t first) const;
    bool holdsAllFrom(std::size_t first) const;
    /// Equal sets have equal hashes. For sharing sets within a process: not the same on every machine.
    std::size_t hash() const;
    /// The 64 units at or above 64 * `block`, one bit each, the first one lowest.
    std::uint64_t bits(std::size_t block) const { return words[block < stored ? block : stored]; }
    /// The stored words in order, `variedBlocks` of them, and the one for the rest. Machine code refers to them by address:
    /// it must not outlive the set, which must not be changed any more.
    const std::uint64_t* table() const { return words; }
    /// At and above this block of 64 units all have the bits of the last block: none, or all.
    std::size_t variedBlocks() const { return stored; }
    bool operator==(const RE_Unit_Set& other) const;

    /// Adds all units for which `predicate` holds. Calls it for each unit.
    template <class Predicate>
    void addWhere(Predicate predicate) {
        for (std::size_t unit = 0; unit < unitCount; ++unit) {
            if (predicate(static_cast<char16_t>(unit))) {
                add(static_cast<char16_t>(unit));
            }
        }
    }

private:
    static constexpr std::size_t wordCount = unitCount / 64;
    static constexpr std::uint32_t ownWords = 2;

    bool storesAll() const { return stored == wordCount; }
    /// What all words from the last stored one on are, where some are not stored.
    std::uint64_t rest() const { return words[stored]; }
    std::size_t leastVaried() const;
    void reserve(std::size_t count);
    void extend(std::size_t count);
    void release() noexcept {
        if (words != own && !isBorrowed) {
            reRelease(words, (room + 1) * sizeof(std::uint64_t));
        }
    }

    std::uint64_t* words = own;
    std::uint32_t stored = 0;
    std::uint32_t room = ownWords;  ///< so many words can be stored, besides the one for the rest
    bool isBorrowed = false;        ///< `words` are neither `own` nor from the host
    std::uint64_t own[ownWords + 1] = {};
};

/// The host's simple case mapping, unit by unit. Literals that ignore case compare lower-case forms.
/// Read-only; shared by all threads.
class CORVANE_REGEXP_EXPORT RE_Case_Table {
public:
    static const RE_Case_Table& get();

    char16_t lower(char16_t unit) const { return lowerOf[unit]; }
    char16_t upper(char16_t unit) const { return upperOf[unit]; }
    /// Whether either mapping gives another unit, if only both the same one.
    bool isCased(char16_t unit) const { return lowerOf[unit] != unit || upperOf[unit] != unit; }
    /// Whether this unit, and no other, has this unit as its lower-case form: then case need not be ignored
    /// for it.
    bool foldsAlone(char16_t unit) const { return lowerOf[unit] == unit && !foldTargets.contains(unit); }

    /// Calls `visit` with each unit that has this unit as its lower-case form, which may be none, or several.
    template <class Visit>
    void forEachForm(char16_t lowerForm, Visit visit) const {
        if (!isCased(lowerForm)) {
            visit(lowerForm);
        }
        const auto first = std::lower_bound(lowerForms.begin(), lowerForms.end(), Form{lowerForm, 0});
        for (auto it = first; it != lowerForms.end() && it->form == lowerForm; ++it) {
            visit(it->unit);
        }
    }
    /// How many units have this unit as their lower-case form.
    std::size_t formsWithin(char16_t lowerForm) const;
    /// Adds the units whose lower-case form lies in the bounds; with `bothForms` also those whose upper-case
    /// form does, and those that fold to the lower-case form of a unit within the bounds, as U+212A does to
    /// that of K. With both forms it takes a microsecond or two, however long the range is.
    void addFolding(RE_Unit_Set& set, char16_t low, char16_t high, bool bothForms) const;

    // What all units of a range, both ends included, have in common. A look-up by halves, however long the range is.
    bool allFoldAlone(char16_t low, char16_t high) const {
        return foldsAlone(low) && !alone.changesWithin(low, high);
    }
    /// Whether all are lower-case letters.
    bool areLower(char16_t low, char16_t high) const;
    /// Whether all are upper-case letters, as far from their lower-case forms as the first one is.
    bool areUpperAlike(char16_t low, char16_t high) const;

private:
    struct Form {
        char16_t form;
        char16_t unit;
        bool operator<(const Form& other) const { return form < other.form; }
    };
    using Forms = std::vector<Form>;

    /// The units at which some property differs from that of the unit before, ascending.
    struct Changes {
        bool changesWithin(char16_t low, char16_t high) const {
            const auto next = std::upper_bound(at.begin(), at.end(), low);
            return next != at.end() && *next <= high;
        }
        std::vector<char16_t> at;
    };
    /// A unit, and another one that a range with the first one matches, too, where case is ignored.
    struct Mate {
        char16_t unit;
        char16_t other;
        auto operator<=>(const Mate&) const = default;
    };
    /// The mates of a block of 64 units that has any: from `first` on in the list of all. All of them, and the mated units,
    /// lie within the bounds.
    struct Mated_Block {
        std::size_t first;
        char16_t low;
        char16_t high;
    };

    RE_Case_Table();
    void listMates();
    static void addFormsWithin(const Forms& forms, RE_Unit_Set& set, char16_t low, char16_t high);

    char16_t lowerOf[RE_Unit_Set::unitCount];
    char16_t upperOf[RE_Unit_Set::unitCount];
    RE_Unit_Set::Storage foldTargetWords;
    RE_Unit_Set foldTargets{foldTargetWords};
    Forms lowerForms;  ///< of the units with case, by their form
    Forms upperForms;
    RE_Unit_Set::Storage uncasedWords;
    RE_Unit_Set uncased{uncasedWords};
    std::vector<Mate> mates;
    std::vector<Mated_Block> matedBlocks;
    Changes alone;
    Changes lowerCase;
    Changes upperCase;
};

/// The classes that escapes name. Filled with the first use, which calls the host for each unit; read-only
/// afterwards.
struct CORVANE_REGEXP_EXPORT RE_Unit_Classes {
    static const RE_Unit_Classes& get();

    static constexpr std::size_t count = 6;
    /// The members in their order.
    std::array<const RE_Unit_Set*, count> all() const {
        return {&digits, &spaces, &words, &noDigits, &noSpaces, &noWords};
    }
    /// Which member of the tables of this process the set is, by its address; `count` when it is none. What
    /// is known of these sets needs to be found out only once. Does not fill the tables.
    static std::size_t numberOf(const RE_Unit_Set& set);

    /// What the dots match: everything, and all but line feeds.
    static const RE_Unit_Set& allUnits();
    static const RE_Unit_Set& allOfLine();

    RE_Unit_Set digits;
    RE_Unit_Set spaces;
    RE_Unit_Set words;  ///< letters, digits and the underscore
    RE_Unit_Set noDigits;
    RE_Unit_Set noSpaces;
    RE_Unit_Set noWords;

private:
    using Storage = std::array<RE_Unit_Set::Storage, count>;
    explicit RE_Unit_Classes(Storage& storage);
};

/// Whether a unit counts as part of a word: the class that the word anchors and `\w` share.
inline bool isWordUnit(char16_t unit) {
    return RE_Unit_Classes::get().words.contains(unit);
}
