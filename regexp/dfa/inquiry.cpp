// The bookkeeping of queries: what they have cost, and when the next one is worth it.
#include "regexp/state/inquiry.h"

#include "regexp/base/within_size.h"
#include "regexp/dfa/dfa.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/state/search_info.h"
#include "regexp/state/search_monitor.h"

#include <algorithm>

namespace {

// Attempts that have read more than so many units for each of the subject are left to the memo, which knows
// what was tried from other starts; the automaton would read the same units from each.
constexpr std::uint64_t mostReadings = 8;
constexpr std::size_t readingsOfShort = 256;  // units

constexpr std::uint64_t unitsAhead = 2;    // of the cost so far, to see whether anything follows
constexpr std::uint64_t unitsAChoice = 8;  // read in the time that a choice takes

}  // namespace

// A pattern that starts at the beginning of the text has one start: there are no later ones to query about.
void RE_Inquiry::begin(const RE_Graph_Facts& graphFacts) {
    *this = {};
    const RE_Speed_Ups& speedUps = graphFacts.speedUps;
    const RE_Dfa* const automaton = speedUps.dfa.get();
    if (automaton == nullptr && !speedUps.dfa.isOpen()) {
        return;
    }
    pattern = &graphFacts;
    wantsTokens = pattern->tokenCount > 0;
    hasManyStarts = pattern->start.entry == nullptr || pattern->start.entry->kind != RE_Node_Kind::textStart;
    use(automaton);
}

void RE_Inquiry::use(const RE_Dfa* automaton) {
    dfa = automaton;
    const RE_Tuning& tuning = pattern->tuning;
    delay = dfa != nullptr && dfa->isAmbiguous() ? tuning.ambiguousInquiryChoices : tuning.inquiryChoices;
    left = delay;
}

// What is known of the pattern stays; of the delay, too, what it has grown to.
RE_Inquiry RE_Inquiry::forOtherSubject() const {
    RE_Inquiry other;
    other.pattern = pattern;
    other.dfa = dfa;
    other.wantsTokens = wantsTokens;
    other.hasManyStarts = hasManyStarts;
    other.delay = delay;
    other.left = pattern != nullptr ? delay : never;
    return other;
}

// A pattern without an automaton gets one when its attempts have often wished for it. Most have few choices.
bool RE_Inquiry::hasAutomaton(const RE_Search_Info& info) {
    if (dfa != nullptr) {
        return true;
    }
    RE_Speed_Ups& speedUps = pattern->speedUps;
    const RE_Dfa* automaton = speedUps.dfa.get();
    if (automaton == nullptr && speedUps.choices.add(delay) >= pattern->tuning.automatonChoices) {
        RE_Aside_Of_Search asked(info);
        automaton = RE_Dfa::obtain(*pattern, &asked);
    }
    if (automaton != nullptr) {
        use(automaton);
        return true;
    }
    left = speedUps.dfa.isOpen() ? delay : never;
    return false;
}

bool RE_Inquiry::goesOn(RE_Search_Info& info) {
    knowsSubject = true;
    if (info.refusesStates() || unitsRead > mostReadings * info.subjectLength() + readingsOfShort) {
        left = never;
        return true;
    }
    if (!hasAutomaton(info)) {
        return true;
    }
    const RE_Dfa::Answer answer = dfa->matchEnd(info.matchStart, info);
    unitsRead += answer.unitsRead;
    cost += answer.unitsRead + delay * unitsAChoice;
    // Where tokens are wanted and there is a match, the query did not help: the next one comes
    // twice as late.
    const bool inVain = answer.end != nullptr && wantsTokens;
    delay *= inVain ? 2 : 1;
    left = delay;
    if (inVain) {
        return true;
    }
    found = answer.end;
    if (found == nullptr && !info.wasInterrupted()) {
        queryLaterStarts(info);
    }
    return false;
}

// Each query costs at most twice what attempts have cost since the search began, and the next one waits until
// that has doubled: together they cost a constant factor.
void RE_Inquiry::queryLaterStarts(RE_Search_Info& info) {
    const char16_t* const from = info.matchStart + 1;
    const bool isKnown = knownFrom != nullptr && knownFrom <= from && from <= knownEnd;
    if (isKnown || !hasManyStarts || !dfa->knowsAllStarts() || from > info.subjectEnd ||
        cost < 2 * costAtLast || cost < info.indexOf(from)) {
        return;
    }
    costAtLast = cost;
    const std::size_t most =
        std::min(withinSize(cost * unitsAhead), static_cast<std::size_t>(info.subjectEnd - from));
    const char16_t* const stop = from + most;
    const char16_t* const end = dfa->firstEnd(from, stop, info).end;
    if (end != nullptr || stop != info.subjectEnd) {
        knownFrom = from;
        knownEnd = end != nullptr ? end : stop;
    } else if (!info.wasInterrupted()) {
        hopeless = from;
    }
}
