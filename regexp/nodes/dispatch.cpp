#include "regexp/nodes/dispatch.h"

#include "regexp/parser/parser_context.h"
#include "regexp/unit_set.h"

#include <algorithm>
#include <bit>
#include <memory_resource>

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

/// Lists of ways, one behind another, each once.
class Way_Lists {
public:
    Way_Lists(std::uint32_t lastMark, std::pmr::memory_resource* memory)
        : lastOfList(lastMark), entries(memory), known(memory) {
        entries.reserve(usualEntries);
        entries.push_back(0);
        known.reserve(usualLists);
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
        for (const std::uint32_t place : known) {
            if (std::equal(entries.begin() + first, entries.end(), entries.begin() + place)) {
                entries.resize(first);
                return place;
            }
        }
        known.push_back(static_cast<std::uint32_t>(first));
        return known.back();
    }

    const std::pmr::vector<std::uint32_t>& all() const { return entries; }

private:
    static constexpr std::size_t usualEntries = 64;
    static constexpr std::size_t usualLists = 16;

    std::uint32_t lastOfList;
    std::pmr::vector<std::uint32_t> entries;
    std::pmr::vector<std::uint32_t> known;  ///< places
};

}  // namespace

// Neighbouring columns mostly have the same list.
RE_Dispatch::RE_Dispatch(RE_ParserContext& context, Branches branches) : RE_Node(context) {
    ways.reserve(branches.size());
    RE_Branch_Start changes;
    for (const Branch& branch : branches) {
        ways.push_back(branch.node);
        branch.start.addChangesTo(changes);
    }
    Way_Lists lists(lastOfList, &context.scratch);
    std::uint32_t* filled = firstPlace.data();
    std::uint32_t place = nowhere;
    changes.forEachColumn([&](std::size_t column) {
        if (column == RE_Branch_Start::columns) {
            return;
        }
        filled = std::fill_n(filled, firstPlace.data() + column - filled, place);
        place = lists.placeOf(branches, column);
    });
    std::fill(filled, firstPlace.data() + firstPlace.size(), place);
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
