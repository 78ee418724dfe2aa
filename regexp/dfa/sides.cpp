#include "regexp/dfa/sides.h"

#include "regexp/dfa/alphabet.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/graph/node.h"

#include <map>

namespace {

RE_Unit_Set oneUnit(char16_t unit) {
    RE_Unit_Set set;
    set.add(unit);
    return set;
}

}  // namespace

const RE_Consumable* onlyTestOf(const RE_Lookaround_Assertion& glance) {
    const auto* const test = nodeAs<RE_Consumable>(glance.body);
    return test != nullptr && test->nextNode == glance.glanceEnd ? test : nullptr;
}

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

// What stands before a unit and what behind is told apart by the same letters.
void RE_Unit_Sides::gather(const RE_Graph_Facts& facts) {
    bool asksForLines = false;
    bool asksForWords = false;
    for (const RE_Node* node : facts.nodes) {
        const RE_Node_Kind kind = node->kind;
        asksForBegin = asksForBegin || kind == RE_Node_Kind::textStart;
        asksForLines = asksForLines || kind == RE_Node_Kind::lineStart || kind == RE_Node_Kind::lineEnd;
        asksForWords = asksForWords || kind == RE_Node_Kind::wordStart || kind == RE_Node_Kind::wordEnd;
        if (kind == RE_Node_Kind::glance) {
            gatherGlance(static_cast<const RE_Lookaround_Assertion&>(*node));
        }
    }
    if (asksForLines) {
        asked.push_back(oneUnit(u'\n'));
    }
    if (asksForWords) {
        asked.push_back(RE_Unit_Classes::get().words);
    }
}

// A longer row of tests is nothing that a state knows the answer to.
void RE_Unit_Sides::gatherGlance(const RE_Lookaround_Assertion& test) {
    if (const RE_Consumable* const unit = onlyTestOf(test)) {
        unit->addUnitsTo(asked.emplace_back());
    }
}
