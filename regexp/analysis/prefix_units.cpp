// The walk that gathers prefixes. A node is visited once for each place at which it can be reached, at most
// eight times, and all visits together are bounded.
//
// Trap: `known` falls while the walk is under way. Sets at places from `known` on are incomplete and must not
// be used.
#include "regexp/analysis/prefix_units.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/units.h"

#include <algorithm>

using namespace RE_Meanings;

namespace {

// Graphs that need more visits than this are not worth a prefix: a shorter one would be incomplete, so there
// is none.
constexpr std::size_t mostVisits = 400;

}  // namespace

void RE_Byte_Sets::add(char16_t unit) {
    const std::size_t low = unit & 0xFF;
    lowBytes[low / 64] |= std::uint64_t{1} << (low % 64);
    if (unit <= 0xFF) {
        latin[low / 64] |= std::uint64_t{1} << (low % 64);
    } else {
        beyondLatin = true;
    }
}

void RE_Byte_Sets::addAscii(const RE_Ascii_Units& units) {
    for (std::size_t j = 0; j < units.size(); ++j) {
        latin[j] |= units[j];
        lowBytes[j] |= units[j];
    }
}

void RE_Byte_Sets::addAll(const RE_Unit_Set& units) {
    // A group is four blocks of 64 units, that is the 256 units with one high byte. Only groups up to the
    // place from which on all blocks are equal are looked at, and one more, which stands for the others.
    const std::size_t blocks = std::min((units.variedBlocks() / 4 + 2) * 4, RE_Unit_Set::unitCount / 64);
    std::array<std::uint64_t, 4> beyond{};
    for (std::size_t i = 4; i < blocks; i += 4) {
        for (std::size_t j = 0; j < 4; ++j) {
            beyond[j] |= units.bits(i + j);
        }
    }
    for (std::size_t j = 0; j < 4; ++j) {
        latin[j] |= units.bits(j);
        lowBytes[j] |= units.bits(j) | beyond[j];
        beyondLatin = beyondLatin || beyond[j] != 0;
    }
}

void RE_Byte_Sets::addAll(const RE_Byte_Sets& other) {
    for (std::size_t j = 0; j < 4; ++j) {
        latin[j] |= other.latin[j];
        lowBytes[j] |= other.lowBytes[j];
    }
    beyondLatin = beyondLatin || other.beyondLatin;
}

const RE_Byte_Sets& RE_Byte_Looks::ofClass(std::size_t number) {
    static const auto looks = [] {
        std::array<RE_Byte_Sets, RE_Unit_Classes::count> all;
        const auto classes = RE_Unit_Classes::get().all();
        for (std::size_t i = 0; i < all.size(); ++i) {
            all[i].addAll(*classes[i]);
        }
        return all;
    }();
    return looks[number];
}

const RE_Byte_Sets& RE_Byte_Looks::of(const RE_Unit_Set& units) {
    if (const std::size_t number = RE_Unit_Classes::numberOf(units); number != RE_Unit_Classes::count) {
        return ofClass(number);
    }
    for (const auto& [set, look] : known) {
        if (set == &units) {
            return look;
        }
    }
    known.emplace_back(&units, RE_Byte_Sets()).second.addAll(units);
    return known.back().second;
}

void RE_Prefix_Units::gather(RE_Node* from, bool emptyCounts) {
    countsEmpty = emptyCounts;
    reach(from, 0);
    visitPending();
}

void RE_Prefix_Units::gather(std::u16string_view text, bool ignoreCase, RE_Node* next) {
    addText(text, ignoreCase, 0);
    reach(next, text.size());
    visitPending();
}

void RE_Prefix_Units::gatherLike(const RE_Prefix_Units& other, std::u16string_view text, bool ignoreCase) {
    addText(text, ignoreCase, 0);
    for (std::size_t place = text.size(); place < mostPlaces; ++place) {
        places[place] = other.places[place];
    }
    known = other.known;
}

struct RE_Prefix_Units::Reader {
    RE_Prefix_Units& prefix;
    std::size_t place;

    void reach(RE_Node* node) const { prefix.reach(node, place); }
    void reach(RE_Node* next, RE_Node* otherwise) const {
        reach(next);
        reach(otherwise);
    }

    void operator()(const Unknown&) const { prefix.endAt(place); }
    void operator()(const Nothing& node) const { reach(node.next); }
    void operator()(const Unit& node) const {
        prefix.visitUnit(*node.test, place);
        prefix.reach(node.next, place + 1);
        reach(node.otherwise);
    }
    void operator()(const Text& node) const { prefix.visitString(*node.string, place); }
    void operator()(const Texts& node) const { prefix.visitLiterals(*node.set, place); }
    void operator()(const Run& node) const { prefix.visitLoop(*node.loop, place); }
    void operator()(const Edge& node) const { reach(node.next, node.otherwise); }
    void operator()(const Mark& node) const { reach(node.next); }
    void operator()(const Choice& node) const {
        node.forEach([this](RE_Node* way) { reach(way); });
    }
    void operator()(const Count_Start& node) const { reach(node.next); }
    void operator()(const Count& node) const { reach(node.body, node.exit); }
    void operator()(const Pass& node) const { reach(node.next, node.exit); }
    // Where the body of a group ends no prefix is known to continue; a lookaround consumes nothing.
    void operator()(const Body& node) const {
        node.atomic != nullptr ? reach(node.body) : reach(node.next, node.otherwise);
    }
    void operator()(const Reference&) const { prefix.endAt(place); }
    void operator()(const Condition& node) const { reach(node.next, node.otherwise); }
    void operator()(const Host_Call& node) const { reach(node.next); }
    void operator()(const Host_Text&) const { prefix.endAt(place); }
    void operator()(const End& node) const {
        if (place != 0 || prefix.countsEmpty || node.ofBody || node.continuation != nullptr) {
            prefix.endAt(place);
        }
    }
};

void RE_Prefix_Units::visitPending() {
    while (known != 0 && !pending.empty()) {
        const auto [node, place] = pending.back();
        pending.pop_back();
        visitMeaning(*node, Reader{*this, place});
        if (seen > mostVisits) {
            known = 0;
        }
    }
}

// Nodes note the places at which they were reached, one bit each.
void RE_Prefix_Units::reach(RE_Node* node, std::size_t place) {
    if (node == nullptr || place >= known) {
        return;
    }
    const std::uint32_t bit = std::uint32_t{1} << place;
    const std::uint32_t before = node->walk == walk ? node->walkNote : 0;
    node->walk = walk;
    node->walkNote = before | bit;
    if ((before & bit) == 0) {
        ++seen;
        pending.push_back({node, place});
    }
}

void RE_Prefix_Units::visitUnit(const RE_Consumable& unit, std::size_t place) {
    if (const RE_Unit_Set* const table = unit.table()) {
        places[place].addAll(looks->of(*table));
        return;
    }
    if (unit.kind == RE_Node_Kind::literal) {
        places[place].add(static_cast<char16_t>(static_cast<const RE_Natural&>(unit).ch));
        return;
    }
    if (unit.kind == RE_Node_Kind::dotLine || unit.matchesAnyChar()) {
        places[place].addAll(looks->of(unit.kind == RE_Node_Kind::dotLine ? RE_Unit_Classes::allOfLine()
                                                                          : RE_Unit_Classes::allUnits()));
        return;
    }
    if (const std::optional<RE_Low_Units> low = lowUnitsOf(unit)) {
        places[place].addAscii(low->words);
        return;
    }
    RE_Unit_Set units;
    unit.addUnitsTo(units);
    places[place].addAll(units);
}

void RE_Prefix_Units::visitString(const RE_String& string, std::size_t place) {
    addText({string.text, string.length}, string.ignoreCase, place);
    reach(string.nextNode, place + string.length);
}

void RE_Prefix_Units::visitLiterals(const RE_Literal_Set& set, std::size_t place) {
    // Literals of equal length continue at the same place: lengths are noted, and followed once each.
    std::uint32_t ends = 0;  // one bit each
    // Gathered in two words a place, as a set may have thousands of literals.
    std::array<RE_Ascii_Units, mostPlaces> ascii{};
    for (std::size_t i = 0; i < set.literals.count(); ++i) {
        const std::u16string_view text = set.literals.text(i);
        ends |= std::uint32_t{1} << std::min(place + text.size(), mostPlaces);
        if (set.literals.ignoresCase()) {
            addText(text, true, place);
            continue;
        }
        for (std::size_t at = place; at < std::min(place + text.size(), mostPlaces); ++at) {
            if (const char16_t unit = text[at - place]; unit < 128) {
                ascii[at][unit / 64] |= std::uint64_t{1} << (unit % 64);
            } else {
                places[at].add(unit);
            }
        }
    }
    for (std::size_t at = place; at < mostPlaces; ++at) {
        places[at].addAscii(ascii[at]);
    }
    for (std::size_t end = place; end < mostPlaces; ++end) {
        if ((ends >> end & 1) != 0) {
            reach(set.nextNode, end);
        }
    }
}

void RE_Prefix_Units::addText(std::u16string_view text, bool ignoreCase, std::size_t place) {
    const std::size_t end = std::min(text.size(), mostPlaces - place);
    if (ignoreCase) {
        for (std::size_t i = 0; i < end; ++i) {
            addFolded(text[i], place + i);
        }
        return;
    }
    for (std::size_t i = 0; i < end; ++i) {
        places[place + i].add(text[i]);
    }
}

// A run of at least `minimum` passes: its units are possible at each place that it may cover, and what
// follows begins at each place at which it may end. Places are few, so the loop ends with the first that is
// not known, if not before.
void RE_Prefix_Units::visitLoop(const RE_Consume& loop, std::size_t place) {
    const RE_Byte_Sets& look = looks->of(*loop.units);
    for (std::uint64_t turns = 0; place < known; ++turns, ++place) {
        // The first turn was counted when the node was reached.
        seen += turns != 0 ? 1 : 0;
        if (turns >= loop.minimum) {
            reach(loop.nextNode, place);
        }
        if (turns == loop.maximum) {
            return;
        }
        places[place].addAll(look);
    }
}

void RE_Prefix_Units::addFolded(char16_t unit, std::size_t place) {
    RE_Case_Table::get().forEachForm(unit, [this, place](char16_t form) { places[place].add(form); });
}
