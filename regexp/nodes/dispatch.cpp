#include "regexp/nodes/dispatch.h"

#include "regexp/unit_set.h"

#include <map>

namespace {

const RE_Unit_Set& unitsBehindTable() {
    static const RE_Unit_Set units = [] {
        RE_Unit_Set set;
        set.addRange(RE_Branch_Start::tableUnits, 0xFFFF);
        return set;
    }();
    return units;
}

}  // namespace

void RE_Branch_Start::addAll(const RE_Unit_Set& units) {
    for (std::size_t unit = 0; unit < tableUnits; ++unit) {
        column[unit] = column[unit] || units.contains(static_cast<char16_t>(unit));
    }
    column[others] = column[others] || units.meets(unitsBehindTable());
}

RE_Dispatch::RE_Dispatch(RE_ParserContext& context, const Branches& branches) : RE_Node(context) {
    for (const Branch& branch : branches) {
        ways.push_back(branch.node);
    }
    std::map<std::vector<std::uint32_t>, std::uint32_t> known;
    for (std::size_t column = 0; column < RE_Branch_Start::columns; ++column) {
        std::vector<std::uint32_t> list;
        for (std::size_t way = 0; way < branches.size(); ++way) {
            if (branches[way].start.column[column]) {
                list.push_back(static_cast<std::uint32_t>(way * 2));
            }
        }
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

bool RE_Dispatch::match(const char16_t*, std::size_t& pos, RE_Search_Info& info) const {
    const RE_Node* const way = choose(pos, info);
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
