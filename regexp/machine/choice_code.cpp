// Code of runs of which a shorter or a longer one is tried where the rest has failed, without leaving the
// code.
//
// Only one such choice is open at a time, and nothing but the rest itself stands behind it. What was so when
// it was taken is kept: where anything comes up that is not for the code, the match loop takes up the rest
// from there.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/program_code.h"
#include "regexp/nodes/consume.h"
#include "regexp/program/own_rest.h"
#include "regexp/state/token_stack.h"
#include "regexp/units/unit_set.h"

#include <algorithm>

namespace corvane_machine {

namespace {

constexpr std::uint32_t mostLeast = 16;

bool isChoiceRun(const RE_Instruction& in) {
    return in.operation == RE_Operation::lazyRun || in.operation == RE_Operation::givingRun;
}

/// Whether what begins with such an instruction is found by looking at the first unit, and at the text behind
/// it.
bool saysWhere(const RE_Instruction& in) {
    switch (in.operation) {
        case RE_Operation::unit:
        case RE_Operation::eitherUnit:
        case RE_Operation::set:
        case RE_Operation::texts:
        case RE_Operation::tokenText:
            return true;
        case RE_Operation::text:
        case RE_Operation::foldedText:
            return in.least < RE_Step_Meter::unitsAStep;
        default:
            return false;
    }
}

bool isBracket(const RE_Instruction& in) {
    return in.operation == RE_Operation::startToken || in.operation == RE_Operation::endToken;
}

}  // namespace

void Program_Code::findChoices() {
    choiceBehind.resize(program.instructions.size());
    for (const RE_Instruction& in : program.instructions) {
        const bool reachesFar = in.most > nearUnits && in.most < RE_Step_Meter::unitsAStep;
        if (isChoiceRun(in) && in.least <= mostLeast && !reachesFar) {
            noteChoice(in);
        }
    }
}

void Program_Code::noteChoice(const RE_Instruction& run) {
    auto found = std::make_unique<Choice>();
    found->run = &run;
    found->rest = ownRest(program, run);
    if (static_cast<const RE_Consume&>(*run.node).restSeeks()) {
        found->first = isBracket(*run.next) ? run.next->next : run.next;
    }
    const RE_Instruction* const first = found->first;
    const bool isFolded = first != nullptr && first->operation == RE_Operation::foldedText;
    if (found->rest.empty() || (first != nullptr && !saysWhere(*first)) ||
        (isFolded && !hasFewForms(literalOf(*first)))) {
        return;
    }
    const auto has = [&](auto... operations) {
        return std::ranges::any_of(
            found->rest, [&](const RE_Instruction* in) { return ((in->operation == operations) || ...); });
    };
    found->records = has(RE_Operation::endToken, RE_Operation::tokenRun);
    found->spares = has(RE_Operation::choose, RE_Operation::texts);
    for (const RE_Instruction* in : found->rest) {
        choiceBehind[indexOf(in)] = found.get();
    }
    choices.push_back(std::move(found));
}

/// The instruction to go on with; null where the match loop has taken over.
const RE_Instruction* Program_Code::emitChoiceRun(const RE_Instruction& in) {
    const auto known = std::ranges::find(choices, &in, &Choice::run);
    if (known == choices.end()) {
        jmp(leaveAt(in), T_NEAR);
        return nullptr;
    }
    Choice& each = **known;
    Label& failed = labelOf(in.otherwise);
    dec(left);
    emitChoiceEntry(each);
    if (in.operation == RE_Operation::lazyRun) {
        emitLazyRun(each, failed);
    } else {
        emitGivingRun(each, failed);
    }
    emitHandOver(each);
    L(each.chosen);
    return emitChosen(each);
}

// Nothing is chosen where a memo would have to be asked.
void Program_Code::emitChoiceEntry(Choice& each) {
    cmp(at(offsetof(RE_Search_Registers, memoCountdown)), 0);
    mov(at(offsetof(RE_Search_Registers, choiceEnd)), p);
    je(each.leave, T_NEAR);
    if (each.first != nullptr && each.first->operation == RE_Operation::tokenText) {
        const auto lengthAt = static_cast<int>(offsetof(RE_TokenInfo, length));
        cmp(at(offsetof(RE_Search_Registers, inEffect)), each.first->least);
        jbe(each.leave, T_NEAR);
        mov(spare, at(offsetof(RE_Search_Registers, slots)));
        cmp(qword[spare + startOfToken(*each.first) + lengthAt], 0);
        je(each.leave, T_NEAR);
    }
    if (each.records) {
        mov(rax, at(offsetof(RE_Search_Registers, inEffect)));
        mov(at(offsetof(RE_Search_Registers, choiceInEffect)), rax);
        mov(rax, at(offsetof(RE_Search_Registers, written)));
        mov(at(offsetof(RE_Search_Registers, choiceWritten)), rax);
    }
}

// The rest writes to none but tokens behind those that were begun when the end was chosen: to take its writes
// back is to call their slots stale again.
void Program_Code::emitTokensBack(const Choice& each) {
    if (!each.records) {
        return;
    }
    mov(rax, at(offsetof(RE_Search_Registers, choiceInEffect)));
    mov(at(offsetof(RE_Search_Registers, inEffect)), rax);
    mov(rax, at(offsetof(RE_Search_Registers, choiceWritten)));
    mov(at(offsetof(RE_Search_Registers, written)), rax);
}

// The rest has failed. A choice is taken up as from the stack.
void Program_Code::emitAgain(Choice& each, Label& failed) {
    L(each.again);
    mov(p, at(offsetof(RE_Search_Registers, choiceEnd)));
    cmp(p, at(offsetof(RE_Search_Registers, choiceLimit)));
    je(failed, T_NEAR);
    mov(rax, at(offsetof(RE_Search_Registers, steps)));
    test(eax, 2047);
    jz(each.handOver, T_NEAR);
    cmp(at(offsetof(RE_Search_Registers, memoCountdown)), 1);
    jbe(each.handOver, T_NEAR);
    cmp(left, static_cast<std::uint32_t>(mostSteps));
    jl(each.handOver, T_NEAR);
    emitTokensBack(each);
    inc(at(offsetof(RE_Search_Registers, steps)));
    dec(at(offsetof(RE_Search_Registers, memoCountdown)));
}

// Before anything was chosen.
void Program_Code::emitLeave(Choice& each) {
    L(each.leave);
    mov(p, at(offsetof(RE_Search_Registers, choiceEnd)));
    inc(left);
    jmp(leaveAt(*each.run), T_NEAR);
}

void Program_Code::emitHandOver(Choice& each) {
    L(each.handOver);
    mov(left, at(offsetof(RE_Search_Registers, choiceMeter)));
    mov(p, at(offsetof(RE_Search_Registers, choiceEnd)));
    emitTokensBack(each);
    if (each.spares) {
        mov(rax, at(offsetof(RE_Search_Registers, choiceCountdown)));
        mov(at(offsetof(RE_Search_Registers, memoCountdown)), rax);
    }
    jmp(exitFor(RE_Machine_Exit::choice, each.run), T_NEAR);
}

// Where the rest is known to begin with what it begins with, that is not asked again.
const RE_Instruction* Program_Code::emitChosen(const Choice& each) {
    mov(at(offsetof(RE_Search_Registers, choiceEnd)), p);
    mov(at(offsetof(RE_Search_Registers, choiceMeter)), left);
    if (each.spares) {
        mov(rax, at(offsetof(RE_Search_Registers, memoCountdown)));
        mov(at(offsetof(RE_Search_Registers, choiceCountdown)), rax);
    }
    const RE_Instruction& next = *each.run->next;
    if (&next != each.first || next.operation == RE_Operation::tokenText ||
        next.operation == RE_Operation::texts) {
        return &next;
    }
    const bool isText = next.operation == RE_Operation::text || next.operation == RE_Operation::foldedText;
    dec(left);
    add(p, static_cast<std::uint32_t>((isText ? next.least : 1) * sizeof(char16_t)));
    return next.next;
}

}  // namespace corvane_machine

#endif
