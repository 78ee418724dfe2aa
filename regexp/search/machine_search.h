// A search by machine code.
#pragma once

#include "regexp/graph/graph_facts.h"
#include "regexp/machine/machine_code.h"
#include "regexp/state/search_info.h"
#include "regexp/search/start_walk.h"

#include <cstddef>

/// Goes on where the code has returned for the first time, for the reason given.
bool goOnByMachineCode(const RE_Graph_Facts& facts, const RE_Node* root, RE_Machine_Exit first,
                       RE_Search_Info& info, std::size_t& length);

/// Tries start after start from `p` to `last`, which is no less. The graph must have machine code. Puts the
/// match into the state and its length, in units, into `length`. Most searches are over when the code returns
/// for the first time.
inline bool findByMachineCode(const RE_Graph_Facts& facts, const RE_Node* root, const char16_t* p,
                              const char16_t* last, RE_Search_Info& info, std::size_t& length) {
    info.lastStart = last;
    info.slots = info.tokens->slots.data();
    info.opened = info.tokenStarts();
    if (!facts.needed.empty()) {
        info.askLeft = RE_Start_Walk::firstAskLeft(facts, info);
    }
    const RE_Machine_Exit reason = facts.machineCode->begin(info, p);
    if (reason == RE_Machine_Exit::matched) {
        info.tokens->count = info.inEffect;  // the other slots are nobody's any more
        length = static_cast<std::size_t>(info.cursor - info.matchStart);
        return true;
    }
    return reason != RE_Machine_Exit::noStart && goOnByMachineCode(facts, root, reason, info, length);
}
