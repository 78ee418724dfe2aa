// Runs a program. It stands in a header so that the search from start to start has it inside: most attempts
// are over after a few instructions.
#pragma once

#include "regexp/nodes/anchors.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/graph/instruction.h"
#include "regexp/seek/literal_search.h"
#include "regexp/state/search_info.h"
#include "regexp/units/unit_set.h"

#include <algorithm>

/// How a program ended. Where it was left `node` is the one to go on at, from `p` on.
struct RE_Program_Exit {
    enum class How { failed, matched, left };

    How how;
    const char16_t* p;
    const RE_Node* node = nullptr;
};

/// What an attempt writes while it is run, kept in registers. Nothing is trailed: there is no choice to go
/// back to.
class RE_Program_Run {
public:
    /// So many steps of the attempt were taken before.
    RE_Program_Run(RE_Search_Info& search, const RE_Graph_Facts& facts, std::int64_t stepsBefore)
        : info(search),
          keepsTokens(facts.keepsTokens),
          slots(search.tokens->slots.data()),
          starts(search.tokenStarts()),
          left(search.meter.room() - stepsBefore) {}

    /// Runs the instructions from `in` on at the start that the state is at.
    [[gnu::always_inline]] RE_Program_Exit run(const RE_Instruction* in);

private:
    RE_Program_Exit leave(RE_Program_Exit::How how, const char16_t* p, const RE_Node* node = nullptr) {
        info.tokens->count = count;
        info.tokens->written = written;
        info.meter.setRoom(left);
        return {how, p, node};
    }
    /// Names stand in the slots already.
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
    const char16_t* runEnd(const RE_Instruction& in, const RE_Consume& loop, const char16_t* p);
    bool repeatsToken(std::size_t number, const char16_t*& p);
    /// The way to choose, if there is one only; null when there are more.
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
        info.meter.setRoom(left);
        end =
            in.most == RE_Instruction::noMaximum ? loop.longRunEnd(p, info) : loop.scanOn(p, p + most, info);
        left = info.meter.room();
    }
    if (in.flag && static_cast<std::size_t>(end - p) < in.most) {
        info.leadingRun = {p, end};
    }
    return end;
}

inline bool RE_Program_Run::repeatsToken(std::size_t number, const char16_t*& p) {
    if (number >= count) {
        return false;
    }
    const RE_TokenInfo& token = slots[number];
    if (token.length > static_cast<std::size_t>(info.subjectEnd - p)) {
        return false;
    }
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
    if (way == RE_Dispatch::manyWays || info.refusesStates()) {
        return nullptr;
    }
    info.spareChoice();
    return in.ways[way];
}

inline RE_Program_Exit RE_Program_Run::run(const RE_Instruction* in) {
    using How = RE_Program_Exit::How;
    const char16_t* const begin = info.subjectBegin;
    const char16_t* const end = info.subjectEnd;
    const char16_t* p = info.matchStart;
    const auto goOn = [&in](bool holds) { in = holds ? in->next : in->otherwise; };
    const auto consume = [&](bool holds) {
        p += holds;
        goOn(holds);
    };
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
                break;
            case RE_Operation::unit:
                consume(p < end && *p == in->unit);
                break;
            case RE_Operation::eitherUnit:
                consume(p < end && (*p == in->unit || *p == in->most));
                break;
            case RE_Operation::range:
                consume(p < end && in->least <= *p && *p <= in->most);
                break;
            case RE_Operation::set:
                consume(p < end && in->units->contains(*p));
                break;
            case RE_Operation::notLineFeed:
                consume(p < end && *p != u'\n');
                break;
            case RE_Operation::text:
                if (static_cast<std::size_t>(end - p) >= in->least && equalUnits(p, in->text, in->least)) {
                    p += in->least;
                    in = in->next;
                } else {
                    in = in->otherwise;
                }
                break;
            case RE_Operation::foldedText:
                if (static_cast<std::size_t>(end - p) >= in->least &&
                    RE_Literal{in->text, in->least, true}.matchesAt(p)) {
                    p += in->least;
                    in = in->next;
                } else {
                    in = in->otherwise;
                }
                break;
            case RE_Operation::run: {
                const char16_t* const stop = runEnd(*in, static_cast<const RE_Consume&>(*in->node), p);
                const bool suffices = static_cast<std::size_t>(stop - p) >= in->least;
                p = stop;
                goOn(suffices);
                break;
            }
            case RE_Operation::tokenRun: {
                const auto& token = static_cast<const RE_Start_Token&>(*in->node);
                --left;
                const char16_t* const stop = runEnd(*in, static_cast<const RE_Consume&>(*token.run), p);
                if (static_cast<std::size_t>(stop - p) < in->least) {
                    in = in->otherwise;
                    break;
                }
                --left;
                record(token.number, static_cast<std::size_t>(p - begin),
                       static_cast<std::size_t>(stop - begin));
                p = stop;
                in = in->next;
                break;
            }
            case RE_Operation::texts: {
                const auto found = static_cast<const RE_Literal_Set*>(in->node)->literals.find(p, end, 0);
                if (found.length == 0) {
                    in = in->otherwise;
                    break;
                }
                if (info.refusesStates()) {
                    ++left;
                    return leave(How::left, p, in->node);
                }
                info.spareChoice();
                p += found.length;
                in = in->next;
                break;
            }
            case RE_Operation::choose: {
                const RE_Instruction* const way = choose(*in, p);
                if (way == nullptr) {
                    ++left;
                    return leave(How::left, p, in->node);
                }
                in = way;
                break;
            }
            case RE_Operation::startToken:
                starts[in->least] = static_cast<std::size_t>(p - begin);
                in = in->next;
                break;
            case RE_Operation::endToken:
                record(in->least, starts[in->least], static_cast<std::size_t>(p - begin));
                in = in->next;
                break;
            case RE_Operation::tokenText:
                goOn(repeatsToken(in->least, p));
                break;
            case RE_Operation::lineStart:
                goOn(p <= begin || p[-1] == u'\n');
                break;
            case RE_Operation::lineEnd:
                goOn(p >= end || *p == u'\n');
                break;
            case RE_Operation::textStart:
                goOn(p <= begin);
                break;
            case RE_Operation::textEnd:
                goOn(p >= end);
                break;
            case RE_Operation::wordStart:
                goOn(p <= begin || !in->units->contains(p[-1]));
                break;
            case RE_Operation::wordEnd:
                goOn(p >= end || !in->units->contains(*p));
                break;
            case RE_Operation::glanceSet:
                goOn(in->flag ? p > begin && in->units->contains(p[-1]) : p < end && in->units->contains(*p));
                break;
            case RE_Operation::glance:
                goOn(static_cast<const RE_Lookaround_Assertion*>(in->node)->glance(p, info));
                break;
            default:
                __builtin_unreachable();
        }
    }
    return leave(How::left, p, in->node);
}
