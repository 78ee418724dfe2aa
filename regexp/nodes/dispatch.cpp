#include "regexp/nodes/dispatch.h"

#include "regexp/parser/parser_context.h"
#include "regexp/unit_set.h"

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
    for (std::size_t column = 0; column < columns; ++column) {
        addColumn(column);
    }
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

// Neighbouring columns mostly have the same list.
RE_Dispatch::RE_Dispatch(RE_ParserContext& context, Branches branches) : RE_Node(context) {
    ways.reserve(branches.size());
    RE_Branch_Start changes;
    for (const Branch& branch : branches) {
        ways.push_back(branch.node);
        branch.start.addChangesTo(changes);
    }
    std::pmr::vector<std::uint32_t> known(&context.scratch);
    std::pmr::vector<std::uint32_t> list(branches.size(), &context.scratch);
    std::uint32_t* filled = firstPlace.data();
    std::uint32_t place = nowhere;
    changes.forEachColumn([&](std::size_t column) {
        if (column == RE_Branch_Start::columns) {
            return;
        }
        filled = std::fill_n(filled, firstPlace.data() + column - filled, place);
        std::uint32_t* end = list.data();
        for (std::size_t way = 0; way < branches.size(); ++way) {
            *end = static_cast<std::uint32_t>(way * 2);
            end += branches[way].start.holds(column) ? 1 : 0;
        }
        place = nowhere;
        if (end != list.data()) {
            end[-1] |= lastOfList;
            place = placeOf({list.data(), end}, known);
        }
    });
    std::fill(filled, firstPlace.data() + firstPlace.size(), place);
}

// The mark of the last entry is part of what is compared: lists of different lengths are never equal.
std::uint32_t RE_Dispatch::placeOf(std::span<const std::uint32_t> list,
                                   std::pmr::vector<std::uint32_t>& known) {
    const auto standsAt = [&](std::uint32_t place) {
        return places.size() - place >= list.size() &&
               std::equal(list.begin(), list.end(), places.begin() + place);
    };
    const auto same = std::ranges::find_if(known, standsAt);
    if (same != known.end()) {
        return *same;
    }
    known.push_back(static_cast<std::uint32_t>(places.size()));
    places.insert(places.end(), list.begin(), list.end());
    return known.back();
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
