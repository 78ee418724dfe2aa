// Follows a graph from one unit to the next in the order in which a search tries its ways. Whatever cannot be decided by the
// units on both sides makes the whole impossible: there is no automaton then, rather than one that guesses.
#include "regexp/dfa/ways.h"

#include "regexp/base/compile_meter.h"
#include "regexp/dfa/alphabet.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/graph/meaning.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/loop_pass.h"

#include <algorithm>

namespace {

constexpr std::size_t longestText = 256;  // units of all literals of one node
constexpr std::uint64_t workOfWay = 2;    // it is looked up, and what it leads to

}  // namespace

RE_Ways::RE_Ways(const RE_Graph_Facts& graphFacts, const RE_Alphabet& letters, const RE_Unit_Sides& unitSides,
                 bool refusesEmptyMatch, RE_Compile_Meter& workMeter)
    : facts(graphFacts),
      alphabet(letters),
      sides(unitSides),
      meter(workMeter),
      rejectEmpty(refusesEmptyMatch) {
    for (const RE_Node* node : facts.nodes) {
        if (std::holds_alternative<RE_Meanings::Count>(node->meaning())) {
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

// What cannot be decided by the units on both sides makes the whole impossible.
struct RE_Ways::Reader {
    RE_Ways& ways;
    const Way& way;

    void go(const RE_Node* next) const { ways.go(way, next); }
    void giveUp() const { ways.possible = false; }
    bool holds(const RE_Meanings::Edge& edge) const {
        const bool atBegin = ways.side == RE_Unit_Sides::begin;
        const bool before = atBegin ? edge.before.holdsAtLimit()
                                    : edge.before.isAny() || edge.before.holds(ways.sides.unitOf(ways.side));
        return before && (ways.hasNext() ? edge.after.holds(ways.nextUnit()) : edge.after.holdsAtLimit());
    }

    void operator()(const RE_Meanings::Unknown&) const { giveUp(); }
    void operator()(const RE_Meanings::Nothing& node) const { go(node.next); }
    void operator()(const RE_Meanings::Unit& node) const {
        if (ways.hasNext() && node.test->matchesUnit(ways.nextUnit())) {
            ways.goOver(node.next, way.thread, 0);
        } else {
            go(node.otherwise);
        }
    }
    void operator()(const RE_Meanings::Text&) const { ways.visitText(way); }
    void operator()(const RE_Meanings::Texts&) const { ways.visitText(way); }
    void operator()(const RE_Meanings::Run& node) const { ways.visitRun(way, *node.loop); }
    void operator()(const RE_Meanings::Edge& node) const { go(holds(node) ? node.next : node.otherwise); }
    void operator()(const RE_Meanings::Mark& node) const { go(node.next); }
    // What is put there last is followed first.
    void operator()(const RE_Meanings::Choice& node) const {
        std::vector<const RE_Node*> inOrder;
        node.forEach([&inOrder](const RE_Node* branch) { inOrder.push_back(branch); });
        std::for_each(inOrder.rbegin(), inOrder.rend(), [this](const RE_Node* branch) { go(branch); });
    }
    void operator()(const RE_Meanings::Count_Start& node) const {
        Way counting = way;
        *ways.countOf(counting.thread, node.counter) = static_cast<std::uint32_t>(node.from);
        ways.possible = ways.possible && node.from <= 0xFFFF;
        ways.go(counting, node.next);
    }
    // After the loop its count means nothing any more. That of the required passes is consulted again after each
    // optional one.
    void operator()(const RE_Meanings::Count& node) const {
        using Kind = RE_Meanings::Count::Kind;
        Way pass = way;
        const std::uint32_t count = (*ways.countOf(pass.thread, way.thread.node))++;
        if (node.kind == Kind::fixed) {
            const bool isRequired = count <= node.limit;
            ways.go(isRequired ? pass : way, isRequired ? node.body : node.exit);
            return;
        }
        Way exit = way;
        *ways.countOf(exit.thread, way.thread.node) = 0;
        if (count >= node.limit) {
            ways.go(exit, node.exit);
            return;
        }
        const bool isLazy = node.kind == Kind::lazy;
        ways.go(isLazy ? pass : exit, isLazy ? node.body : node.exit);
        ways.go(isLazy ? exit : pass, isLazy ? node.exit : node.body);
    }
    // Whether a pass may be the last one depends on how far the end is.
    void operator()(const RE_Meanings::Pass& node) const {
        if (!node.begins) {
            go(way.passes[node.pass] ? nullptr : node.next);
            return;
        }
        ways.possible = ways.possible && node.kind != RE_Pass::lastWhenEmpty;
        Way on = way;
        on.passes[node.pass] = node.kind == RE_Pass::optional;
        ways.go(on, node.next);
    }
    void operator()(const RE_Meanings::Body&) const { giveUp(); }
    void operator()(const RE_Meanings::Reference&) const { giveUp(); }
    void operator()(const RE_Meanings::Condition&) const { giveUp(); }
    void operator()(const RE_Meanings::Host_Call&) const { giveUp(); }
    void operator()(const RE_Meanings::Host_Text&) const { giveUp(); }
    void operator()(const RE_Meanings::End& node) const {
        ways.possible = ways.possible && !node.ofBody && node.continuation == nullptr;
        ways.reached = !ways.fresh || !ways.rejectEmpty;
    }
};

bool RE_Ways::run(const RE_Thread& thread) {
    pending.assign(1, Way{thread});
    while (isPossible() && !reached && !pending.empty()) {
        const Way way = pending.back();
        pending.pop_back();
        meter.spend(workOfWay);
        if (way.consumes) {
            goOver(way.thread.node, way.thread, way.thread.within);
        } else if (met.insert(way).second) {
            ++visits;
            visitMeaning(*way.thread.node, Reader{*this, way});
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

std::uint32_t* RE_Ways::countOf(RE_Thread& thread, const RE_Node* counter) {
    return &thread.counts[counters.at(counter)];
}
