// Runs a program. It is in a header so that the search from start to start has it inside: most attempts are
// over after a few instructions.
//
// The members that an attempt writes are copies of parts of the search, so that the compiler can keep them in
// processor registers. `leave` writes them back, on every way out; what is left of the steps is written back around
// each scan as well.
//
// Invariant: each case does what its node does in the match loop, and has taken as many steps: one for each
// node that was visited, none for an instruction that leaves or fails, since no node was visited then.
#pragma once

#include "regexp/graph/instruction.h"
#include "regexp/nodes/anchors.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/seek/literal_search.h"
#include "regexp/state/search_info.h"
#include "regexp/units/unit_set.h"

#include <algorithm>

/// How a program ended. Where it was left `node` is the one to continue at, from `p` on.
struct RE_Program_Exit {
    enum class How { failed, matched, left };

    How how;
    const char16_t* p;
    const RE_Node* node = nullptr;
};

/// One attempt, from the start position of the search. What it writes is not trailed: there is no choice to
/// return to.
class RE_Program_Run {
public:
    /// `stepsBefore`: how many steps of the attempt were taken before; a seeker that was passed over is one.
    RE_Program_Run(RE_Search_Info& search, const RE_Graph_Facts& facts, std::int64_t stepsBefore)
        : info(search),
          keepsTokens(facts.keepsTokens),
          slots(search.tokens->slots.data()),
          starts(search.tokenStarts()),
          left(search.meter.room() - stepsBefore) {}

    /// Runs the instructions from `in` on at the start position of the search. `in` is an instruction of the
    /// program of the same graph.
    [[gnu::always_inline]] RE_Program_Exit run(const RE_Instruction* in);

private:
    /// Writes back what was kept in registers.
    RE_Program_Exit leave(RE_Program_Exit::How how, const char16_t* p, const RE_Node* node = nullptr) {
        info.tokens->count = count;
        info.tokens->written = written;
        info.meter.setRoom(left);
        return {how, p, node};
    }
    /// Closes a token, as the token store does. Slots below it that the attempt has not written yet are
    /// emptied: they may hold what another attempt wrote. Names are in the slots already.
    void record(std::size_t number, std::size_t start, std::size_t end) {
        for (; written < number; ++written) {
            slots[written].start = slots[written].length = 0;
            slots[written].tookPart = false;
        }
        slots[number].start = start;
        slots[number].length = end - start;
        slots[number].tookPart = true;
        written = std::max(written, number + 1);
        count = keepsTokens ? written : number + 1;
    }
    /// The end of the run of `in` from `p` on, of `most` units at the most. The first units are looked at
    /// here; a longer run is measured by `loop`, which remembers it.
    const char16_t* runEnd(const RE_Instruction& in, const RE_Consume& loop, const char16_t* p);
    /// Whether the text of a token in effect is at `p`, which is then moved past it.
    bool repeatsToken(std::size_t number, const char16_t*& p);
    /// The way to choose, if there is only one; null when there are more, or when a memo would have to be
    /// consulted. No way at all leads to the instruction that fails.
    const RE_Instruction* choose(const RE_Instruction& in, const char16_t* p);

    RE_Search_Info& info;
    const bool keepsTokens;
    RE_TokenInfo* const slots;
    std::size_t* const starts;
    std::size_t count = 0;
    std::size_t written =
        0;  ///< as in the token store; without backtracking that is the highest closed token
    std::int64_t left;
};

inline const char16_t* RE_Program_Run::runEnd(const RE_Instruction& in, const RE_Consume& loop,
                                              const char16_t* p) {
    const RE_Unit_Set& members = *in.units;
    // `noMaximum` is a negative difference where pointers have 32 bits.
    const auto room = static_cast<std::size_t>(info.subjectEnd - p);
    const std::size_t most = std::min<std::size_t>(in.most, room);
    const char16_t* const stop = p + std::min<std::size_t>(most, RE_Consume::shortRun);
    const char16_t* end = p;
    while (end < stop && members.contains(*end)) {
        ++end;
    }
    if (end == stop && most > std::size_t{RE_Consume::shortRun}) {
        // The scan counts its steps in the meter: it has to know what was taken here, and the rest is read
        // back.
        info.meter.setRoom(left);
        end =
            in.most == RE_Instruction::noMaximum ? loop.longRunEnd(p, info) : loop.scanOn(p, p + most, info);
        left = info.meter.room();
    }
    // A run that reached its limit may be longer: starts within it cannot be skipped.
    if (in.flag && static_cast<std::size_t>(end - p) < in.most) {
        info.leadingRun = {p, end};
    }
    return end;
}

inline bool RE_Program_Run::repeatsToken(std::size_t number, const char16_t*& p) {
    // Slots at and above the count are not in effect.
    if (number >= count) {
        return false;
    }
    const RE_TokenInfo& token = slots[number];
    if (token.length > static_cast<std::size_t>(info.subjectEnd - p)) {
        return false;
    }
    // As `RE_Match_Token` does by `noteScan`, before the comparison and whatever it finds.
    left -= static_cast<std::int64_t>(token.length / RE_Step_Meter::unitsAStep);
    if (!equalUnits(info.subjectBegin + token.start, p, token.length)) {
        return false;
    }
    p += token.length;
    return true;
}

inline const RE_Instruction* RE_Program_Run::choose(const RE_Instruction& in, const char16_t* p) {
    const auto& choice = static_cast<const RE_Dispatch&>(*in.node);
    const std::size_t way = choice.onlyWay(p, info.subjectEnd);
    if (way == RE_Dispatch::noWay) {
        return in.otherwise;
    }
    // A memo may refuse the state, and this cannot look. The match loop takes the same choice with both.
    if (way == RE_Dispatch::manyWays || info.refusesStates()) {
        return nullptr;
    }
    // As in the graph, where a choice with one way open counts towards the beginning of the memo.
    info.spareChoice();
    return in.ways[way];
}

inline RE_Program_Exit RE_Program_Run::run(const RE_Instruction* in) {
    using How = RE_Program_Exit::How;
    const char16_t* const begin = info.subjectBegin;
    const char16_t* const end = info.subjectEnd;
    const char16_t* p = info.matchStart;
    // Most instructions end in one of these two.
    const auto jump = [&in](bool holds) { in = holds ? in->next : in->otherwise; };
    const auto consume = [&](bool holds) {
        p += holds;
        jump(holds);
    };
    // A step for the node of the instruction is taken first; `left` never gets below zero within one, but for
    // scans.
    while (left >= RE_Instruction::mostSteps) {
        --left;
        switch (in->operation) {
            case RE_Operation::leave:
            case RE_Operation::lazyRun:
            case RE_Operation::givingRun:
                ++left;
                return leave(How::left, p, in->node);
            case RE_Operation::failed:
                ++left;
                return leave(How::failed, p);
            case RE_Operation::matched:
                return leave(static_cast<const RE_End_Of_Tree*>(in->node)->completes(p, info) ? How::matched
                                                                                              : How::failed,
                             p);
            case RE_Operation::pass:
                in = in->next;
                continue;
            case RE_Operation::unit:
                consume(p < end && *p == in->unit);
                continue;
            case RE_Operation::eitherUnit:
                consume(p < end && (*p == in->unit || *p == in->most));
                continue;
            case RE_Operation::range:
                consume(p < end && in->least <= *p && *p <= in->most);
                continue;
            case RE_Operation::set:
                consume(p < end && in->units->contains(*p));
                continue;
            case RE_Operation::notLineFeed:
                consume(p < end && *p != u'\n');
                continue;
            case RE_Operation::text:
                if (static_cast<std::size_t>(end - p) >= in->least && equalUnits(p, in->text, in->least)) {
                    p += in->least;
                    in = in->next;
                } else {
                    in = in->otherwise;
                }
                continue;
            case RE_Operation::foldedText:
                if (static_cast<std::size_t>(end - p) >= in->least &&
                    RE_Literal{in->text, in->least, true}.matchesAt(p)) {
                    p += in->least;
                    in = in->next;
                } else {
                    in = in->otherwise;
                }
                continue;
            case RE_Operation::run: {
                const char16_t* const stop = runEnd(*in, static_cast<const RE_Consume&>(*in->node), p);
                const bool suffices = static_cast<std::size_t>(stop - p) >= in->least;
                p = stop;
                jump(suffices);
                continue;
            }
            // Three nodes and as many steps: the start of the token, the run, and, if that suffices, the
            // token's end. The register for the start is not written, as only that end would read it.
            case RE_Operation::tokenRun: {
                const auto& token = static_cast<const RE_Start_Token&>(*in->node);
                --left;
                const char16_t* const stop = runEnd(*in, static_cast<const RE_Consume&>(*token.run), p);
                if (static_cast<std::size_t>(stop - p) < in->least) {
                    in = in->otherwise;
                    continue;
                }
                --left;
                record(token.number, static_cast<std::size_t>(p - begin),
                       static_cast<std::size_t>(stop - begin));
                p = stop;
                in = in->next;
                continue;
            }
            case RE_Operation::texts: {
                const auto found = static_cast<const RE_Literal_Set*>(in->node)->literals.find(p, end, 0);
                if (found.length == 0) {
                    in = in->otherwise;
                    continue;
                }
                // There is a memo: the node has to be visited by the loop, which consults it.
                if (info.refusesStates()) {
                    ++left;
                    return leave(How::left, p, in->node);
                }
                info.spareChoice();
                p += found.length;
                in = in->next;
                continue;
            }
            case RE_Operation::choose: {
                const RE_Instruction* const way = choose(*in, p);
                if (way == nullptr) {
                    ++left;
                    return leave(How::left, p, in->node);
                }
                in = way;
                continue;
            }
            case RE_Operation::startToken:
                starts[in->least] = static_cast<std::size_t>(p - begin);
                in = in->next;
                continue;
            case RE_Operation::endToken:
                record(in->least, starts[in->least], static_cast<std::size_t>(p - begin));
                in = in->next;
                continue;
            case RE_Operation::tokenText:
                jump(repeatsToken(in->least, p));
                continue;
            case RE_Operation::lineStart:
                jump(p <= begin || p[-1] == u'\n');
                continue;
            case RE_Operation::lineEnd:
                jump(p >= end || *p == u'\n');
                continue;
            case RE_Operation::textStart:
                jump(p <= begin);
                continue;
            case RE_Operation::textEnd:
                jump(p >= end);
                continue;
            case RE_Operation::wordStart:
                jump(p <= begin || !in->units->contains(p[-1]));
                continue;
            case RE_Operation::wordEnd:
                jump(p >= end || !in->units->contains(*p));
                continue;
            case RE_Operation::glanceSet:
                jump(in->flag ? p > begin && in->units->contains(p[-1]) : p < end && in->units->contains(*p));
                continue;
            case RE_Operation::glanceTexts:
            case RE_Operation::glance:
                jump(static_cast<const RE_Lookaround_Assertion*>(in->node)->glance(p, info));
                continue;
        }
        // Every operation has a case above, which leaves it by `continue`: so the jump needs no check.
        __builtin_unreachable();
    }
    return leave(How::left, p, in->node);
}
