#include "regexp/dfa/inquiry.h"

#include "regexp/dfa/dfa.h"
#include "regexp/graph_facts.h"
#include "regexp/search_info.h"

namespace {

// Attempts that read more than so many units for each of the subject are left to the memo, which knows what was tried
// from other starts.
constexpr std::size_t mostReadings = 8;
constexpr std::size_t readingsOfShort = 256;  // units

}  // namespace

void RE_Inquiry::begin(const RE_Graph_Facts& pattern) {
    dfa = pattern.dfa.get();
    wantsTokens = pattern.tokenCount > 0;
    delay = RE_Inquiry_Delay::choices;
    left = dfa != nullptr ? delay : never;
    forgetSubject();
}

void RE_Inquiry::forgetSubject() {
    if (dfa != nullptr) {
        left = delay;
        unitsRead = 0;
    }
    found = hopeless = knownFrom = knownEnd = nullptr;
}

bool RE_Inquiry::goesOn(RE_Search_Info& info) {
    if (info.refusesStates() || unitsRead > mostReadings * info.subjectLength() + readingsOfShort) {
        left = never;
        return true;
    }
    const RE_Dfa::Answer answer = dfa->matchEnd(info.matchStart, info);
    unitsRead += answer.unitsRead;
    // Where tokens are wanted such a question was in vain: the next one comes later.
    const bool inVain = answer.end != nullptr && wantsTokens;
    delay *= inVain ? 2 : 1;
    left = delay;
    if (inVain) {
        return true;
    }
    found = answer.end;
    if (found == nullptr && !info.wasInterrupted()) {
        askForLaterOnes(info);
    }
    return false;
}

void RE_Inquiry::askForLaterOnes(RE_Search_Info& info) {
    const char16_t* const from = info.matchStart + 1;
    const bool isKnown = knownFrom != nullptr && knownFrom <= from && from <= knownEnd;
    if (isKnown || !dfa->knowsAllStarts() || from > info.subjectEnd) {
        return;
    }
    const char16_t* const end = dfa->firstEnd(from, info).end;
    if (end != nullptr) {
        knownFrom = from;
        knownEnd = end;
    } else if (!info.wasInterrupted()) {
        hopeless = from;
    }
}
