// A search by machine code: the side of it that runs outside of the code.
//
// The common case is inline and short, as most searches are over when the code returns for the first time.
// Everything else is in `machine_search.cpp`.
#pragma once

#include "regexp/graph/graph_facts.h"
#include "regexp/machine/machine_code.h"
#include "regexp/search/start_walk.h"
#include "regexp/state/search_info.h"

#include <cstddef>

/// Continues a search whose code has returned for the first time, for the reason `first`. True with the
/// length in units where a match was found.
bool goOnByMachineCode(const RE_Graph_Facts& facts, const RE_Machine_Code& code, RE_Machine_Exit first,
                       RE_Search_Info& info, std::size_t& length);

/// Tries start after start from `p` to `last`, which is not before `p`, with `askLeft` steps left when the needed literals
/// are asked for. Puts the start of the match into the state and its length, in units, into `length`.
inline bool continueByMachineCode(const RE_Graph_Facts& facts, const RE_Machine_Code& code, const char16_t* p,
                                  const char16_t* last, std::int64_t askLeft, RE_Search_Info& info,
                                  std::size_t& length) {
    info.lastStart = last;
    info.slots = info.tokens->slots.data();
    info.opened = info.tokenStarts();
    info.askLeft = askLeft;
    info.allowedUpTo = nullptr;
    const RE_Machine_Exit reason = code.begin(info, p);
    if (reason == RE_Machine_Exit::matched) {
        info.tokens->count = info.inEffect;  // the slots above may hold stale data
        length = static_cast<std::size_t>(info.cursor - info.matchStart);
        return true;
    }
    return reason != RE_Machine_Exit::noStart && goOnByMachineCode(facts, code, reason, info, length);
}

/// The same of a search that begins at `p`.
inline bool findByMachineCode(const RE_Graph_Facts& facts, const RE_Machine_Code& code, const char16_t* p,
                              const char16_t* last, RE_Search_Info& info, std::size_t& length) {
    // Without needed literals the code has no test that reads `askLeft`.
    const std::int64_t askLeft = facts.needed.empty() ? 0 : RE_Start_Walk::firstAskLeft(facts, info);
    return continueByMachineCode(facts, code, p, last, askLeft, info, length);
}
