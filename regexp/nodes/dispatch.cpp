// Makes the lists of ways of a dispatch, and takes them.
//
// Most columns of a dispatch have one of a few lists. Lists are made where they change from one column to the
// next, and equal ones are shared.
#include "regexp/nodes/dispatch.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/graph_context.h"
#include "regexp/units/unit_set.h"

#include <algorithm>
#include <bit>

void RE_Branch_Start::addAll(const RE_Unit_Set& units) {
    for (std::size_t block = 0; block < tableUnits / 64; ++block) {
        bits[block] |= units.bits(block);
    }
    if (units.holdsAnyFrom(tableUnits)) {
        addColumn(others);
    }
}

void RE_Branch_Start::addEverything() {
    bits.fill(~std::uint64_t{0});
    // The last word is used in part: columns that there are not must stay empty, or `count` would count them.
    bits.back() >>= 64 * bits.size() - columns;
}

std::size_t RE_Branch_Start::count() const {
    std::size_t sum = 0;
    for (const std::uint64_t word : bits) {
        sum += static_cast<std::size_t>(std::popcount(word));
    }
    return sum;
}

void RE_Branch_Start::addChangesTo(RE_Branch_Start& changes) const {
    for (std::size_t i = 0; i < bits.size(); ++i) {
        const std::uint64_t before = bits[i] << 1 | (i != 0 ? bits[i - 1] >> 63 : 0);
        changes.bits[i] |= bits[i] ^ before;
    }
}

namespace {

/// Lists of ways, one after another, each once. Lists are compared with those that are known: there are few.
class Way_Lists {
public:
    Way_Lists(std::uint32_t lastMark, RE_Scratch_Memory* memory)
        : lastOfList(lastMark), entries(memory), known(memory) {
        entries.reserve(usualEntries);
        entries.push_back(0);
        known.reserve(usualLists);
    }

    /// The place of the list of the ways of these numbers, one bit each; 0 when there are none.
    std::uint32_t placeOf(std::uint64_t ways) {
        if (ways == 0) {
            return 0;
        }
        for (const Known& list : known) {
            if (list.ways == ways) {
                return list.place;
            }
        }
        const auto first = static_cast<std::uint32_t>(entries.size());
        for (std::uint64_t left = ways; left != 0; left &= left - 1) {
            entries.push_back(static_cast<std::uint32_t>(std::countr_zero(left)) * 2);
        }
        entries.back() |= lastOfList;
        known.push_back({ways, first});
        return first;
    }

    /// The place of the list of the branches that can begin with the column; 0 when there are none.
    std::uint32_t placeOf(RE_Dispatch::Branches branches, std::size_t column) {
        const std::size_t first = entries.size();
        for (std::uint32_t way = 0; way < branches.size(); ++way) {
            if (branches[way].start.holds(column)) {
                entries.push_back(way * 2);
            }
        }
        if (entries.size() == first) {
            return 0;
        }
        entries.back() |= lastOfList;
        // The mark is part of what is compared: lists of different lengths are never equal.
        for (const Known& list : known) {
            if (std::equal(entries.begin() + first, entries.end(), entries.begin() + list.place)) {
                entries.resize(first);
                return list.place;
            }
        }
        known.push_back({0, static_cast<std::uint32_t>(first)});
        return known.back().place;
    }

    const RE_Scratch_List<std::uint32_t>& all() const { return entries; }

private:
    static constexpr std::size_t usualEntries = 64;
    static constexpr std::size_t usualLists = 16;

    struct Known {
        std::uint64_t ways;  ///< as bits, where lists are compared so; else 0
        std::uint32_t place;
    };

    std::uint32_t lastOfList;
    RE_Scratch_List<std::uint32_t> entries;
    RE_Scratch_List<Known> known;
};

using Places = std::array<std::uint32_t, RE_Branch_Start::columns>;

// From so many branches on it is cheaper to compare the ways of a column as the bits of one word than as
// lists. More than 64 do not fit into a word.
bool paysByBits(RE_Dispatch::Branches branches) {
    return branches.size() > 8 && branches.size() <= 64;
}

/// Fills in the place of each column by the ways as bits: a way changes its bit at the columns where it
/// begins or ceases to be possible.
void placeByBits(RE_Dispatch::Branches branches, Way_Lists& lists, Places& places) {
    std::array<std::uint64_t, RE_Branch_Start::columns + 1> changed{};
    for (std::size_t way = 0; way < branches.size(); ++way) {
        RE_Branch_Start changes;
        branches[way].start.addChangesTo(changes);
        changes.forEachColumn([&](std::size_t column) { changed[column] ^= std::uint64_t{1} << way; });
    }
    std::uint64_t ways = 0;
    std::uint32_t place = 0;
    for (std::size_t column = 0; column < places.size(); ++column) {
        if (changed[column] != 0) {
            ways ^= changed[column];
            place = lists.placeOf(ways);
        }
        places[column] = place;
    }
}

/// The same by lists, made at each column at which any way changes. Neighbouring columns mostly have the same
/// list.
void placeByColumns(RE_Dispatch::Branches branches, Way_Lists& lists, Places& places) {
    RE_Branch_Start changes;
    for (const RE_Dispatch::Branch& branch : branches) {
        branch.start.addChangesTo(changes);
    }
    std::uint32_t* filled = places.data();
    std::uint32_t place = 0;
    changes.forEachColumn([&](std::size_t column) {
        if (column == RE_Branch_Start::columns) {
            return;
        }
        filled = std::fill_n(filled, places.data() + column - filled, place);
        place = lists.placeOf(branches, column);
    });
    std::fill(filled, places.data() + places.size(), place);
}

}  // namespace

RE_Dispatch::RE_Dispatch(RE_Graph_Context& context, Branches branches) : RE_Node(context) {
    ways.reserve(branches.size());
    for (const Branch& branch : branches) {
        ways.push_back(branch.node);
    }
    Way_Lists lists(lastOfList, &context.scratch);
    Places first{};
    if (paysByBits(branches)) {
        placeByBits(branches, lists, first);
    } else {
        placeByColumns(branches, lists, first);
    }
    std::transform(first.begin(), first.end(), firstPlace.begin(), [](std::uint32_t place) {
        return static_cast<std::uint8_t>(std::min<std::uint32_t>(place, isFar));
    });
    if (lists.all().size() > isFar) {
        farPlaces.assign(first.begin(), first.end());
    }
    places.assign(lists.all().begin(), lists.all().end());
}

bool RE_Dispatch::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    const RE_Node* const way = choose(subject + pos, info);
    info.redirect(way);
    return way != nullptr;
}

RE_Node* RE_Dispatch::resume(const RE_Backtrack_Record& record, std::size_t& pos,
                             RE_Search_Info& info) const {
    const char16_t* const p = record.position;
    pos = info.indexOf(p);
    return take(static_cast<std::uint32_t>(info.poppedWord()), p, info);
}

void RE_Dispatch::visitLinks(RE_Link_Visitor& visitor) {
    for (RE_Node*& way : ways) {
        visitor.link(way, RE_Link::alternative);
    }
}

std::string RE_Dispatch::label() const {
    return "Dispatch to " + std::to_string(ways.size()) + " ways";
}

RE_Meaning RE_Dispatch::meaning() const {
    return RE_Meanings::Choice{{}, ways};
}
