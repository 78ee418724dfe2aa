// Which units look alike to what precedes a position: two units are of one side when every tested set holds both or
// neither. The begin of the subject is a side of its own.
#include "regexp/dfa/sides.h"

#include "regexp/dfa/alphabet.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/graph/meaning.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

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

RE_Unit_Sides::RE_Unit_Sides(const RE_Graph_Facts& facts, RE_Alphabet& alphabet) {
    gather(facts);
    for (const RE_Unit_Set& set : asked) {
        alphabet.split(set);
    }
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
void RE_Unit_Sides::gather(const RE_Graph_Facts& facts) {
    for (const RE_Node* node : facts.nodes) {
        const RE_Meaning meaning = node->meaning();
        if (const auto* const edge = std::get_if<RE_Meanings::Edge>(&meaning)) {
            asksForBegin = asksForBegin || !edge->before.isAny();
            add(acceptedBy(edge->before));
            add(acceptedBy(edge->after));
        }
    }
}

void RE_Unit_Sides::add(RE_Unit_Set units) {
    if (units != RE_Unit_Set() && std::ranges::find(asked, units) == asked.end()) {
        asked.push_back(std::move(units));
    }
}
