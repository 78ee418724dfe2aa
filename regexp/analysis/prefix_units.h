// The units with which a match can begin, place after place.
//
// Invariant: sets are never too small. Every match along a gathered way has, at each of the first `known`
// places, a unit of the set of that place. Tests that consume nothing are taken to hold.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/graph/node.h"
#include "regexp/nodes/graph_context.h"
#include "regexp/units/unit_set.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

class RE_Consume;
class RE_Literal_Set;
class RE_String;

/// Units below 0x80, one bit each.
using RE_Ascii_Units = std::array<std::uint64_t, 2>;

/// A set of units seen through two lenses of one byte each: their low bytes, and themselves, where all units
/// from 0x100 on are one. Vector scans compare bytes; which lens tells more units apart depends on the set.
/// One bit for each byte, in place of the 8 KiB of a set of units.
struct RE_Byte_Sets {
    std::array<std::uint64_t, 4> lowBytes{};
    std::array<std::uint64_t, 4> latin{};
    bool beyondLatin = false;

    void add(char16_t unit);
    void addAscii(const RE_Ascii_Units& units);
    void addAll(const RE_Unit_Set& units);
    void addAll(const RE_Byte_Sets& other);
    bool operator==(const RE_Byte_Sets& other) const = default;
};

/// What sets of units look like through the lenses. The same ones come at place after place. Sets are known
/// by their address, so they must live as long as this.
class RE_Byte_Looks {
public:
    explicit RE_Byte_Looks(RE_Scratch_Memory* memory) : known(memory) {}
    const RE_Byte_Sets& of(const RE_Unit_Set& units);

private:
    static const RE_Byte_Sets& ofClass(std::size_t number);

    RE_Scratch_List<std::pair<const RE_Unit_Set*, RE_Byte_Sets>> known;
};

/// Gathers, for what a way through the graph consumes first, the units that are possible at each of its first
/// places. Every match along that way has a unit of each set up to `known`. Several ways may be taken
/// together, one after the other: what they share is visited once.
class RE_Prefix_Units {
public:
    /// Each place costs a set and more visits. Reached places are bits of a node's note, so there could be 32
    /// at most.
    static constexpr std::size_t mostPlaces = 8;

    RE_Prefix_Units(RE_Graph_Context& context, RE_Byte_Looks& setLooks)
        : pending(&context.scratch), walk(context.nextWalk()), looks(&setLooks) {}

    /// Gathers from a node on. With `emptyCounts` an end that is reached at once ends the prefix there; else
    /// such a match is refused anyway.
    void gather(RE_Node* from, bool emptyCounts);
    /// The same for the way that begins with this literal and continues at `next`.
    void gather(std::u16string_view text, bool ignoreCase, RE_Node* next);

    /// The same, where the other one was gathered for nothing but a literal of that length, which continues
    /// at the same node: what comes after the literal is copied. Nothing has been gathered here before.
    void gatherLike(const RE_Prefix_Units& other, std::u16string_view text, bool ignoreCase);

    std::array<RE_Byte_Sets, mostPlaces> places;
    /// So many places are complete; a way that ends, or is not known further, lowers it.
    std::size_t known = mostPlaces;

private:
    /// A node reached after so many units, which is the place of the next one.
    struct Reached {
        RE_Node* node;
        std::size_t place;
    };

    /// Puts a node on the list, unless it was there for that place before or the place is beyond what is
    /// known.
    void reach(RE_Node* node, std::size_t place);
    struct Reader;  ///< of what the nodes mean
    void visitUnit(const RE_Consumable& unit, std::size_t place);
    void visitString(const RE_String& string, std::size_t place);
    void visitLiterals(const RE_Literal_Set& set, std::size_t place);
    void visitPending();
    void addText(std::u16string_view text, bool ignoreCase, std::size_t place);
    void visitLoop(const RE_Consume& loop, std::size_t place);
    /// Some match may be over at this place, or continue with units that nobody knows.
    void endAt(std::size_t place) { known = place < known ? place : known; }
    void addFolded(char16_t unit, std::size_t place);

    RE_Scratch_List<Reached> pending;
    std::uint32_t walk;
    std::size_t seen = 0;
    RE_Byte_Looks* looks;
    bool countsEmpty = true;
};
