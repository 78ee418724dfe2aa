// Refines a partition of the units: each set that a pattern tests splits the letters that it divides. Units of one letter
// are alike to every node, so one example stands for all of them.
//
// Two units are of one side when every set that is tested in front of a position, or after it, holds both or neither. The
// begin of the subject is a side of its own.
#include "regexp/dfa/alphabet.h"

#include "regexp/base/compile_meter.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/graph/meaning.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace {

// All blocks of units are gone through twice.
constexpr std::uint64_t workOfSplit = 256;

RE_Unit_Set consumedBy(const RE_Consumable& node) {
    RE_Unit_Set set;
    node.addUnitsTo(set);
    return set;
}

RE_Unit_Set unitsFor(char16_t unit, bool ignoreCase) {
    RE_Unit_Set set;
    if (ignoreCase) {
        RE_Case_Table::get().addFolding(set, unit, unit, false);
    } else {
        set.add(unit);
    }
    return set;
}

/// How little a unit is suited as an example of many.
int strangeness(char16_t unit) {
    const char16_t lower = unit | 0x20;
    if ((lower >= u'a' && lower <= u'z') || (unit >= u'0' && unit <= u'9')) {
        return 0;
    }
    if (unit > u' ' && unit < 0x7F) {
        return 1;
    }
    return unit == u' ' ? 2 : (unit >= 0xA0 && unit < 0xD800 ? 3 : 4);
}

RE_Unit_Set acceptedBy(const RE_Meanings::Side& side) {
    struct Gather {
        RE_Unit_Set& set;
        void operator()(char16_t unit) const { set.add(unit); }
        void operator()(const RE_Unit_Set& units) const { set.addAll(units); }
        void operator()(const RE_Consumable& test) const { test.addUnitsTo(set); }
    };
    RE_Unit_Set set;
    side.visitAccepted(Gather{set});
    return set;
}

}  // namespace

RE_Node_Literals literalsOf(const RE_Node* node) {
    const RE_Meaning meaning = node->meaning();
    if (const auto* const text = std::get_if<RE_Meanings::Text>(&meaning)) {
        return {{{text->string->text, text->string->length}}, text->string->ignoreCase};
    }
    RE_Node_Literals found;
    if (const auto* const texts = std::get_if<RE_Meanings::Texts>(&meaning)) {
        const RE_Literal_Trie& literals = texts->set->literals;
        for (std::size_t i = 0; i < literals.count(); ++i) {
            found.texts.push_back(literals.text(i));
        }
        found.ignoreCase = literals.ignoresCase();
    }
    return found;
}

void RE_Alphabet::learn(const RE_Graph_Facts& facts, RE_Compile_Meter& meter) {
    letters.assign(RE_Unit_Set::unitCount, 0);
    letterOfBlock.fill(0);
    examples.assign(1, u'\0');
    std::set<std::pair<char16_t, bool>> seen;
    std::set<const RE_Unit_Set*> seenTables{nullptr};
    for (const RE_Node* node : facts.nodes) {
        const RE_Meaning meaning = node->meaning();
        const auto* const unit = std::get_if<RE_Meanings::Unit>(&meaning);
        const RE_Unit_Set* const table = unit != nullptr ? unit->test->table() : nullptr;
        if (unit != nullptr && (table == nullptr || seenTables.insert(table).second)) {
            meter.spend(workOfSplit);
            split(consumedBy(*unit->test));
        }
        const RE_Node_Literals literals = literalsOf(node);
        for (const std::u16string_view text : literals.texts) {
            for (const char16_t at : text) {
                meter.spend();
                if (seen.insert({at, literals.ignoreCase}).second) {
                    meter.spend(workOfSplit);
                    split(unitsFor(at, literals.ignoreCase));
                }
                if (!isComplete()) {
                    return;
                }
            }
        }
        if (!isComplete()) {
            return;  // a split takes longer the more letters there are
        }
    }
    meter.spend(workOfSplit);
    chooseExamples();
}

/// Calls `visit` (first unit, how many, their letter, whether they are in the set) for units that are alike.
template <class Visit>
void RE_Alphabet::forEachPiece(const RE_Unit_Set& set, Visit visit) const {
    for (std::size_t block = 0; block < blocks; ++block) {
        const std::uint64_t bits = set.bits(block);
        const std::uint16_t letter = letterOfBlock[block];
        if (letter != several && (bits == 0 || bits == ~std::uint64_t{0})) {
            visit(block * blockUnits, blockUnits, letter, bits != 0);
            continue;
        }
        for (std::size_t unit = block * blockUnits; unit < (block + 1) * blockUnits; ++unit) {
            visit(unit, std::size_t{1}, letters[unit], (bits >> (unit % blockUnits) & 1) != 0);
        }
    }
}

void RE_Alphabet::split(const RE_Unit_Set& set) {
    constexpr std::uint16_t none = 0xFFFF;
    const std::size_t before = examples.size();
    std::vector<std::uint16_t> inside(before, none);
    std::vector<bool> hasOthers(before, false);
    forEachPiece(set, [&](std::size_t, std::size_t, std::uint16_t letter, bool isInside) {
        hasOthers[letter] = hasOthers[letter] || !isInside;
    });
    forEachPiece(set, [&](std::size_t first, std::size_t count, std::uint16_t letter, bool isInside) {
        if (!isInside || letter >= before || !hasOthers[letter]) {
            return;
        }
        if (inside[letter] == none) {
            inside[letter] = static_cast<std::uint16_t>(examples.size());
            examples.push_back(u'\0');
        }
        relabel(first, count, inside[letter]);
    });
}

void RE_Alphabet::relabel(std::size_t first, std::size_t count, std::uint16_t letter) {
    std::fill_n(letters.begin() + static_cast<std::ptrdiff_t>(first), count, letter);
    letterOfBlock[first / blockUnits] = count == blockUnits ? letter : several;
}

// Units that are as good as each other stand in blocks, behind the first few.
void RE_Alphabet::chooseExamples() {
    constexpr std::size_t varied = 4;
    for (std::size_t block = 0; block < blocks; ++block) {
        const bool isOne = block >= varied && letterOfBlock[block] != several;
        for (std::size_t i = 0; i < (isOne ? 1 : blockUnits); ++i) {
            offerExample(static_cast<char16_t>(block * blockUnits + i));
        }
    }
}

void RE_Alphabet::offerExample(char16_t unit) {
    char16_t& example = examples[letters[unit]];
    if (letters[example] != letters[unit] || strangeness(unit) < strangeness(example)) {
        example = unit;
    }
}

RE_Letters RE_Alphabet::all() const {
    RE_Letters found;
    for (std::size_t letter = 0; letter < examples.size(); ++letter) {
        found.set(letter);
    }
    return found;
}

RE_Unit_Set RE_Alphabet::unitsOf(const RE_Letters& those) const {
    RE_Unit_Set set;
    for (std::size_t block = 0; block < blocks; ++block) {
        const std::size_t first = block * blockUnits;
        const std::uint16_t letter = letterOfBlock[block];
        if (letter != several && those[letter]) {
            set.addRange(static_cast<char16_t>(first), static_cast<char16_t>(first + blockUnits - 1));
        }
        for (std::size_t unit = first; letter == several && unit < first + blockUnits; ++unit) {
            if (those[letters[unit]]) {
                set.add(static_cast<char16_t>(unit));
            }
        }
    }
    return set;
}

RE_Letters RE_Alphabet::lettersOf(const RE_Consumable& unit) const {
    return lettersOf(consumedBy(unit));
}

RE_Letters RE_Alphabet::lettersOf(char16_t unit, bool ignoreCase) const {
    return lettersOf(unitsFor(unit, ignoreCase));
}

RE_Letters RE_Alphabet::lettersOf(const RE_Unit_Set& set) const {
    RE_Letters found;
    for (std::size_t letter = 0; letter < examples.size(); ++letter) {
        found[letter] = set.contains(examples[letter]);
    }
    return found;
}

RE_Unit_Sides::RE_Unit_Sides(const RE_Graph_Facts& facts, RE_Alphabet& alphabet, RE_Compile_Meter& meter) {
    gather(facts, meter);
    for (const RE_Unit_Set& set : asked) {
        meter.spend(workOfSplit);
        alphabet.split(set);
        complete = complete && alphabet.isComplete();
        if (!complete) {
            return;
        }
    }
    meter.spend(workOfSplit);
    alphabet.chooseExamples();
    sides.assign(alphabet.size(), begin);
    if (asked.empty() && !asksForBegin) {
        return;
    }
    std::map<std::vector<bool>, std::size_t> numbers;
    for (std::size_t letter = 0; letter < alphabet.size(); ++letter) {
        const char16_t unit = alphabet.unitOf(letter);
        std::vector<bool> answers;
        for (const RE_Unit_Set& set : asked) {
            answers.push_back(set.contains(unit));
        }
        const auto [known, isNew] = numbers.try_emplace(answers, examples.size());
        if (isNew) {
            examples.push_back(unit);
        }
        sides[letter] = known->second;
    }
}

// What precedes a position and what follows it is told apart by the same letters.
void RE_Unit_Sides::gather(const RE_Graph_Facts& facts, RE_Compile_Meter& meter) {
    for (const RE_Node* node : facts.nodes) {
        meter.spend(1 + 4 * asked.size());
        const RE_Meaning meaning = node->meaning();
        if (const auto* const edge = std::get_if<RE_Meanings::Edge>(&meaning)) {
            asksForBegin = asksForBegin || !edge->before.isAny();
            add(acceptedBy(edge->before));
            add(acceptedBy(edge->after));
        }
    }
}

void RE_Unit_Sides::add(RE_Unit_Set units) {
    // Each set is compared with all before it.
    constexpr std::size_t mostAsked = 256;
    complete = complete && asked.size() <= mostAsked;
    if (complete && units != RE_Unit_Set() && std::ranges::find(asked, units) == asked.end()) {
        asked.push_back(std::move(units));
    }
}
