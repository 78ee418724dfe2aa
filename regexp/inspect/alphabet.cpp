#include "regexp/inspect/alphabet.h"

#include "regexp/graph_facts.h"
#include "regexp/inspect/node_literals.h"
#include "regexp/nodes/node.h"

#include <set>
#include <utility>

namespace {

RE_Unit_Set unitsOf(const RE_Consumable& node) {
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

}  // namespace

void RE_Alphabet::learn(const RE_Graph_Facts& facts) {
    letterOf.assign(RE_Unit_Set::unitCount, 0);
    examples.assign(1, u'\0');
    std::set<std::pair<char16_t, bool>> seen;
    for (const RE_Node* node : facts.nodes) {
        const auto* const unit = dynamic_cast<const RE_Consumable*>(node);
        if (unit != nullptr && unit->isSingleUnit()) {
            split(unitsOf(*unit));
        }
        const RE_Node_Literals literals = literalsOf(node);
        for (const std::u16string_view text : literals.texts) {
            for (const char16_t at : text) {
                if (seen.insert({at, literals.ignoreCase}).second) {
                    split(unitsFor(at, literals.ignoreCase));
                }
            }
        }
        if (!isComplete()) {
            return;
        }
    }
    chooseExamples();
}

void RE_Alphabet::split(const RE_Unit_Set& set) {
    constexpr std::uint16_t none = 0xFFFF;
    std::vector<std::uint16_t> inside(examples.size(), none);
    std::vector<bool> hasOthers(examples.size(), false);
    for (std::size_t unit = 0; unit < RE_Unit_Set::unitCount; ++unit) {
        if (!set.contains(static_cast<char16_t>(unit))) {
            hasOthers[letterOf[unit]] = true;
        }
    }
    for (std::size_t unit = 0; unit < RE_Unit_Set::unitCount; ++unit) {
        const std::uint16_t letter = letterOf[unit];
        if (letter >= hasOthers.size() || !hasOthers[letter] || !set.contains(static_cast<char16_t>(unit))) {
            continue;
        }
        if (inside[letter] == none) {
            inside[letter] = static_cast<std::uint16_t>(examples.size());
            examples.push_back(u'\0');
        }
        letterOf[unit] = inside[letter];
    }
}

void RE_Alphabet::chooseExamples() {
    for (std::size_t unit = 0; unit < RE_Unit_Set::unitCount; ++unit) {
        char16_t& example = examples[letterOf[unit]];
        const auto offered = static_cast<char16_t>(unit);
        if (letterOf[example] != letterOf[unit] || strangeness(offered) < strangeness(example)) {
            example = offered;
        }
    }
}

RE_Letters RE_Alphabet::all() const {
    RE_Letters letters;
    for (std::size_t letter = 0; letter < examples.size(); ++letter) {
        letters.set(letter);
    }
    return letters;
}

RE_Letters RE_Alphabet::lettersOf(const RE_Consumable& unit) const {
    return lettersOf(unitsOf(unit));
}

RE_Letters RE_Alphabet::lettersOf(char16_t unit, bool ignoreCase) const {
    return lettersOf(unitsFor(unit, ignoreCase));
}

RE_Letters RE_Alphabet::lettersOf(const RE_Unit_Set& set) const {
    RE_Letters letters;
    for (std::size_t letter = 0; letter < examples.size(); ++letter) {
        letters[letter] = set.contains(examples[letter]);
    }
    return letters;
}
