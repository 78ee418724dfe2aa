#include "regexp/dfa/ways.h"

#include "regexp/dfa/alphabet.h"
#include "regexp/dfa/node_literals.h"
#include "regexp/dfa/sides.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/nodes/anchors.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/counters.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/loop_pass.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/units.h"

#include <algorithm>

namespace {

constexpr std::size_t longestText = 256;  // units of all literals of one node

}  // namespace

RE_Ways::RE_Ways(const RE_Graph_Facts& graphFacts, const RE_Alphabet& letters, const RE_Unit_Sides& unitSides,
                 bool refusesEmptyMatch)
    : facts(graphFacts), alphabet(letters), sides(unitSides), rejectEmpty(refusesEmptyMatch) {
    for (const RE_Node* node : facts.nodes) {
        if (nodeAs<RE_State_Counter>(node) != nullptr) {
            counters.try_emplace(node, counters.size());
        }
    }
    possible = !facts.hasDynamicNodes && facts.passRegisters <= mostPasses &&
               counters.size() <= RE_Thread::mostCounters;
}

RE_Ways::Letter RE_Ways::atEnd() const {
    return alphabet.size();
}

char16_t RE_Ways::nextUnit() const {
    return alphabet.unitOf(nextLetter);
}

void RE_Ways::begin(std::size_t sideBefore, Letter next, std::vector<RE_Thread>& into) {
    side = sideBefore;
    nextLetter = next;
    reached = false;
    behind = &into;
    known.clear();
    met.clear();
}

bool RE_Ways::follow(const RE_Thread& thread) {
    fresh = false;
    return run(thread);
}

bool RE_Ways::followStart() {
    fresh = true;
    return run({facts.start.entry});
}

bool RE_Ways::run(const RE_Thread& thread) {
    pending.assign(1, Way{thread});
    while (isPossible() && !reached && !pending.empty()) {
        const Way way = pending.back();
        pending.pop_back();
        if (way.consumes) {
            goOver(way.thread.node, way.thread, way.thread.within);
        } else if (met.insert(way).second) {
            ++visits;
            visit(way);
        } else {
            ambiguous = true;
        }
    }
    return reached;
}

/// Goes on at a node without going over the unit.
void RE_Ways::go(const Way& way, const RE_Node* node) {
    if (node != nullptr) {
        Way on = way;
        on.thread.node = node;
        on.thread.within = 0;
        pending.push_back(on);
    }
}

/// Goes on at a node behind the unit.
void RE_Ways::goOver(const RE_Node* node, RE_Thread thread, std::uint32_t within) {
    if (node == nullptr) {
        return;
    }
    thread.node = node;
    thread.within = within;
    if (known.insert(thread).second) {
        behind->push_back(thread);
    } else {
        ambiguous = true;
    }
}

void RE_Ways::visit(const Way& way) {
    if (!visitConsuming(way) && !visitAnchor(way) && !visitRepetition(way)) {
        visitOther(way);
    }
}

bool RE_Ways::visitConsuming(const Way& way) {
    const RE_Node* const node = way.thread.node;
    if (const auto* unit = nodeAs<RE_Unit_Test>(node)) {
        if (hasNext() && unit->matchesUnit(nextUnit())) {
            goOver(unit->nextNode, way.thread, 0);
        } else {
            go(way, unit->failTarget);
        }
    } else if (const auto* loop = nodeAs<RE_Consume>(node)) {
        visitRun(way, *loop);
    } else if (nodeAs<RE_String>(node) != nullptr || nodeAs<RE_Literal_Set>(node) != nullptr) {
        visitText(way);
    } else {
        return false;
    }
    return true;
}

// Of several literals `within` counts on through the texts, so that it tells them apart.
void RE_Ways::visitText(const Way& way) {
    const RE_Node_Literals literals = literalsOf(way.thread.node);
    possible = possible && literals.units() <= longestText;
    if (!hasNext()) {
        return;
    }
    const RE_Case_Table& cases = RE_Case_Table::get();
    const char16_t next = literals.ignoreCase ? cases.lower(nextUnit()) : nextUnit();
    std::size_t first = 0;
    for (const std::u16string_view text : literals.texts) {
        const bool isBegun = way.thread.within > first && way.thread.within < first + text.size();
        const std::size_t at = isBegun ? way.thread.within - first : 0;
        if ((isBegun || way.thread.within == 0) && text[at] == next) {
            const bool isOver = at + 1 == text.size();
            goOver(isOver ? way.thread.node->nextNode : way.thread.node, way.thread,
                   isOver ? 0 : static_cast<std::uint32_t>(first + at + 1));
        }
        first += text.size();
    }
}

void RE_Ways::visitRun(const Way& way, const RE_Consume& loop) {
    constexpr std::uint64_t mostCounted = 0xFFFF;
    const bool isEndless = loop.maximum == RE_Consume::noMaximum;
    possible = possible && loop.minimum <= mostCounted && (isEndless || loop.maximum <= mostCounted);
    const std::uint32_t taken = way.thread.within;
    const bool takes = hasNext() && (isEndless || taken < loop.maximum) && loop.units->contains(nextUnit());
    const auto more =
        static_cast<std::uint32_t>(isEndless ? std::min<std::uint64_t>(taken + 1, loop.minimum) : taken + 1);
    const bool mayEnd = taken >= loop.minimum;
    if (loop.lazy) {
        if (takes && !(mayEnd && loop.possessive)) {
            Way later = way;
            later.consumes = true;
            later.thread.within = more;
            pending.push_back(later);
        }
        go(way, mayEnd ? loop.nextNode : nullptr);
        return;
    }
    if (takes) {
        goOver(&loop, way.thread, more);
    }
    go(way, mayEnd && !(takes && loop.possessive) ? loop.nextNode : nullptr);
}

bool RE_Ways::visitAnchor(const Way& way) {
    const RE_Node* const node = way.thread.node;
    const bool atBegin = side == RE_Unit_Sides::begin;
    bool holds = false;
    switch (node->kind) {
        case RE_Node_Kind::textStart:
            holds = atBegin;
            break;
        case RE_Node_Kind::textEnd:
            holds = !hasNext();
            break;
        case RE_Node_Kind::lineStart:
            holds = atBegin || sides.unitOf(side) == u'\n';
            break;
        case RE_Node_Kind::lineEnd:
            holds = !hasNext() || nextUnit() == u'\n';
            break;
        case RE_Node_Kind::wordStart:
            holds = atBegin || !isWordUnit(sides.unitOf(side));
            break;
        case RE_Node_Kind::wordEnd:
            holds = !hasNext() || !isWordUnit(nextUnit());
            break;
        case RE_Node_Kind::glance: {
            const auto& glance = static_cast<const RE_Lookaround_Assertion&>(*node);
            const RE_Consumable* const test = onlyTestOf(glance);
            const bool hasUnit = glance.behind ? !atBegin : hasNext();
            possible = possible && test != nullptr;
            holds = possible && hasUnit && test->matchesUnit(glance.behind ? sides.unitOf(side) : nextUnit());
            go(way, holds ? glance.nextNode : glance.failTarget);
            return true;
        }
        default:
            return false;
    }
    go(way, holds ? node->nextNode : nullptr);
    return true;
}

bool RE_Ways::visitRepetition(const Way& way) {
    const RE_Node* const node = way.thread.node;
    Way on = way;
    if (const auto* start = nodeAs<RE_Start_Counter>(node)) {
        *countOf(on.thread, start->counter) = static_cast<std::uint32_t>(start->count);
        possible = possible && start->count <= 0xFFFF;
        go(on, start->nextNode);
    } else if (const auto* counter = nodeAs<RE_State_Counter>(node)) {
        visitCounter(way, *counter);
    } else if (const auto* begin = dynamic_cast<const RE_Start_Pass*>(node)) {
        // Whether a pass may be the last one depends on how far the end is.
        possible = possible && begin->passKind != RE_Pass::lastWhenEmpty;
        on.passes[begin->pass] = begin->passKind == RE_Pass::optional;
        go(on, begin->nextNode);
    } else if (const auto* end = dynamic_cast<const RE_End_Pass*>(node)) {
        visitEndPass(way, *end);
    } else {
        return false;
    }
    return true;
}

std::uint32_t* RE_Ways::countOf(RE_Thread& thread, const RE_Node* counter) {
    return &thread.counts[counters.at(counter)];
}

// Behind the loop its count means nothing any more. That of the required passes is asked again behind each
// optional one.
void RE_Ways::visitCounter(const Way& way, const RE_State_Counter& counter) {
    Way pass = way;
    const std::uint32_t count = (*countOf(pass.thread, &counter))++;
    if (const auto* fixed = nodeAs<RE_Fixed_Counter>(&counter)) {
        const bool isRequired = count <= fixed->limit;
        go(isRequired ? pass : way, isRequired ? fixed->nextNode : fixed->doneNode);
        return;
    }
    Way exit = way;
    *countOf(exit.thread, &counter) = 0;
    const bool isLazy = nodeAs<RE_Lazy_Counter>(&counter) != nullptr;
    const RE_Node* const body = isLazy ? counter.alternative : counter.nextNode;
    const RE_Node* const exitNode = isLazy ? counter.nextNode : counter.alternative;
    if (count >= counter.limit) {
        go(exit, exitNode);
        return;
    }
    // What is put there last is followed first.
    go(isLazy ? pass : exit, isLazy ? body : exitNode);
    go(isLazy ? exit : pass, isLazy ? exitNode : body);
}

void RE_Ways::visitEndPass(const Way& way, const RE_End_Pass& end) {
    if (!way.passes[end.pass]) {
        go(way, end.nextNode);
    }
}

void RE_Ways::visitOther(const Way& way) {
    const RE_Node* const node = way.thread.node;
    if (const auto* end = nodeAs<RE_End_Of_Tree>(node)) {
        possible = possible && !end->endsBody && end->continuation == nullptr;
        reached = !fresh || !rejectEmpty;
    } else if (const auto* split = nodeAs<RE_Split>(node); split != nullptr && !split->isCounter) {
        go(way, split->alternative);
        go(way, split->nextNode);
    } else if (const auto* dispatch = nodeAs<RE_Dispatch>(node)) {
        for (auto branch = dispatch->ways.rbegin(); branch != dispatch->ways.rend(); ++branch) {
            go(way, *branch);
        }
    } else if (node->isStartToken() || node->isEndToken() || node->kind == RE_Node_Kind::passage) {
        go(way, node->nextNode);
    } else {
        possible = false;
    }
}
