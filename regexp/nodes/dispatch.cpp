#include "regexp/nodes/dispatch.h"

#include "regexp/unit_set.h"

#include <algorithm>
#include <bit>
#include <map>
#include <numeric>
#include <span>

namespace {

struct Before {
    bool operator()(std::span<const std::uint32_t> a, std::span<const std::uint32_t> b) const {
        return a.size() != b.size() ? a.size() < b.size() : std::ranges::lexicographical_compare(a, b);
    }
};

}  // namespace

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

// The ways of each column, one list behind another.
RE_Dispatch::Lists RE_Dispatch::listsOf(const Branches& branches,
                                        std::array<std::uint32_t, RE_Branch_Start::columns + 1>& starts) {
    starts.fill(0);
    for (const Branch& branch : branches) {
        branch.start.forEachColumn([&](std::size_t column) { ++starts[column + 1]; });
    }
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    Lists lists(starts.back());
    auto filled = starts;
    for (std::size_t way = 0; way < branches.size(); ++way) {
        branches[way].start.forEachColumn(
            [&](std::size_t column) { lists[filled[column]++] = static_cast<std::uint32_t>(way * 2); });
    }
    return lists;
}

RE_Dispatch::RE_Dispatch(RE_ParserContext& context, const Branches& branches) : RE_Node(context) {
    ways.reserve(branches.size());
    for (const Branch& branch : branches) {
        ways.push_back(branch.node);
    }
    std::array<std::uint32_t, RE_Branch_Start::columns + 1> starts;
    Lists lists = listsOf(branches, starts);
    std::map<std::span<const std::uint32_t>, std::uint32_t, Before> known;
    for (std::size_t column = 0; column < RE_Branch_Start::columns; ++column) {
        const std::span<std::uint32_t> list(lists.data() + starts[column], lists.data() + starts[column + 1]);
        if (list.empty()) {
            continue;
        }
        list.back() |= lastOfList;
        const auto [place, isNew] = known.try_emplace(list, static_cast<std::uint32_t>(places.size()));
        if (isNew) {
            places.insert(places.end(), list.begin(), list.end());
        }
        firstPlace[column] = place->second;
    }
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
