// The token store, and what goes to the trail.
#include "regexp/state/search_records.h"

#include "regexp/graph/graph_facts.h"

#include <new>

// Without memory for them a search goes on without tokens.
void RE_Search_Records::makeTokens(std::size_t count) {
    try {
        ownTokens.slots.resize(count);
        tokens = &ownTokens;
        ownTokens.reset();
        nameSlots();
    } catch (const std::bad_alloc&) {
        tokens = nullptr;
    }
}

// Names belong to the pattern: slots have them whether or not their groups take part.
void RE_Search_Records::nameSlots() {
    if (facts == nullptr || tokens == nullptr || (facts->tokenNames.empty() && !slotsHaveNames)) {
        return;
    }
    const auto& names = facts->tokenNames;
    for (std::size_t i = 0; i < tokens->slots.size(); ++i) {
        tokens->slots[i].name = i < names.size() ? names[i] : nullptr;
    }
    slotsHaveNames = !names.empty();
}

const RE_TokenInfo* RE_Search_Records::getToken(const char16_t* name) const {
    return tokens == nullptr ? nullptr : withinSubject(tokens->get(name));
}

void RE_Search_Records::notePass(std::size_t pass, std::size_t word) {
    setRegister(facts->tokenCount + pass, word);
}

std::size_t RE_Search_Records::passWord(std::size_t pass) const {
    return registers[facts->tokenCount + pass];
}

void RE_Search_Records::trailRegister(std::size_t index) {
    trail.push_back({nullptr, {registers[index], index, nullptr}});
}

void RE_Search_Records::trailSlot(std::size_t index) {
    RE_TokenInfo& slot = tokens->slots[index];
    trail.push_back({&slot, slot});
}
