// Code of runs of which a shorter or a longer one is tried where the rest has failed, without leaving the code.
//
// Only one such choice is open at a time, and nothing but the rest itself stands behind it. What was so when it was
// taken is kept: where anything comes up that is not for the code, the match loop takes up the rest from there.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/program_code.h"
#include "regexp/nodes/consume.h"
#include "regexp/program/own_rest.h"
#include "regexp/token_stack.h"
#include "regexp/unit_set.h"

#include <algorithm>

namespace corvane_machine {

namespace {

constexpr std::uint32_t mostLeast = 16;
// Within so many units, and what a vector shows beyond them, scans take no steps of their own.
constexpr std::uint32_t nearUnits = 48;

bool isChoiceRun(const RE_Instruction& in) {
    return in.operation == RE_Operation::lazyRun || in.operation == RE_Operation::givingRun;
}

/// Whether what begins with such an instruction is found by looking at the first unit, and at the text behind it.
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

RE_Literal literalOf(const RE_Instruction& text) {
    return {text.text, text.least, text.operation == RE_Operation::foldedText};
}

int startOfToken(const RE_Instruction& reference) {
    return static_cast<int>(reference.least * sizeof(RE_TokenInfo));
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
    }
}

void Program_Code::emitLazyRun(Choice& each, Label& failed) {
    const RE_Instruction& in = *each.run;
    Label& leaveLater = fresh();
    Label& notHere = fresh();
    if (in.most == RE_Instruction::noMaximum) {
        mov(at(offsetof(RE_Search_Registers, choiceLimit)), end);
    } else {
        lea(rax, ptr[p + static_cast<int>(in.most * sizeof(char16_t))]);
        cmp(rax, end);
        cmova(rax, end);
        mov(at(offsetof(RE_Search_Registers, choiceLimit)), rax);
    }
    emitLeast(in, failed);
    if (each.first != nullptr) {
        unlessStart(*each.first, notHere);
    }
    jmp(each.chosen, T_NEAR);
    L(notHere);
    if (each.first != nullptr) {
        cmp(p, at(offsetof(RE_Search_Registers, choiceLimit)));
        jae(failed, T_NEAR);
        dec(left);
        emitLonger(each, failed, leaveLater);
        L(leaveLater);
        inc(left);
    }
    emitLeave(each);
    emitAgain(each, failed);
    dec(left);
    Label& undecided = fresh();
    emitLonger(each, failed, undecided);
    L(undecided);
    dec(at(offsetof(RE_Search_Registers, steps)));
    inc(at(offsetof(RE_Search_Registers, memoCountdown)));
}

// The units that each such run has.
void Program_Code::emitLeast(const RE_Instruction& in, Label& failed) {
    if (in.least == 0) {
        return;
    }
    Label& again = fresh();
    lea(stop, ptr[p + static_cast<int>(in.least * sizeof(char16_t))]);
    cmp(stop, end);
    ja(failed, T_NEAR);
    L(again);
    movzx(eax, word[p]);
    unlessIn(*in.units, failed);
    add(p, 2);
    cmp(p, stop);
    jb(again);
}

// From the end at `p` to the next longer one at which the rest can begin. Goes to `dead` where the run ends before.
void Program_Code::emitLonger(Choice& each, Label& dead, Label& undecided) {
    const RE_Instruction& in = *each.run;
    if (each.first == nullptr) {
        loadUnit(dead);
        unlessIn(*in.units, dead);
        add(p, 2);
        jmp(each.chosen, T_NEAR);
        return;
    }
    const RE_Instruction& first = *each.first;
    Label& again = fresh();
    Label& oneByOne = fresh();
    Label& notHere = fresh();
    Label& nextUnit = fresh();
    mov(runBegin, p);
    jmp(nextUnit, T_NEAR);
    L(again);
    if (scansVectors && kindOf(*in.units) != Kind::mixed && canScanFor(first)) {
        Label& met = fresh();
        lea(rax, ptr[p + static_cast<int>(vectorUnits * sizeof(char16_t))]);
        cmp(rax, end);
        ja(oneByOne, T_NEAR);
        emitFirstUnits(first);
        mov(ebp, eax);
        emitMembers(p, *in.units);
        xor_(eax, 0xFFFF);
        or_(eax, ebp);
        bsf(ecx, eax);
        lea(rax, ptr[p + rcx * 2]);
        cmovnz(p, rax);
        jnz(met);
        add(p, static_cast<std::uint32_t>(vectorUnits * sizeof(char16_t)));
        lea(rax, ptr[runBegin + static_cast<int>(nearUnits * sizeof(char16_t))]);
        cmp(p, rax);
        jb(again, T_NEAR);
        jmp(undecided, T_NEAR);
        L(met);
    }
    L(oneByOne);
    unlessStart(first, notHere);
    if (in.most != RE_Instruction::noMaximum) {
        cmp(p, at(offsetof(RE_Search_Registers, choiceLimit)));
        ja(dead, T_NEAR);
    }
    jmp(each.chosen, T_NEAR);
    L(notHere);
    lea(rax, ptr[runBegin + static_cast<int>((nearUnits - 1) * sizeof(char16_t))]);
    cmp(p, rax);
    jae(undecided, T_NEAR);
    L(nextUnit);
    loadUnit(dead);
    unlessIn(*in.units, dead);
    add(p, 2);
    jmp(again, T_NEAR);
}

void Program_Code::emitGivingRun(Choice& each, Label& failed) {
    const RE_Instruction& in = *each.run;
    Label& longest = fresh();
    emitNearRun(in, each.leave);
    if (in.flag) {
        emitLeadingRun(in);
    }
    lea(rax, ptr[runBegin + static_cast<int>(in.least * sizeof(char16_t))]);
    cmp(p, rax);
    jb(failed, T_NEAR);
    mov(at(offsetof(RE_Search_Registers, choiceLimit)), rax);
    L(longest);
    dec(left);
    if (each.first != nullptr) {
        Label& shorter = fresh();
        Label& found = fresh();
        Label& back = fresh();
        unlessStart(*each.first, shorter);
        jmp(each.chosen, T_NEAR);
        L(back);
        unlessStart(*each.first, shorter);
        jmp(found);
        L(shorter);
        sub(p, 2);
        cmp(p, at(offsetof(RE_Search_Registers, choiceLimit)));
        jae(back, T_NEAR);
        jmp(failed, T_NEAR);
        L(found);
        dec(left);
    }
    jmp(each.chosen, T_NEAR);
    emitLeave(each);
    emitAgain(each, failed);
    sub(p, 2);
    jmp(longest, T_NEAR);
}

// Leaves the end of the run in `p`, its beginning in `runBegin`.
void Program_Code::emitNearRun(const RE_Instruction& in, Label& tooLong) {
    const std::uint32_t most = std::min(in.most, nearUnits);
    Label& oneByOne = fresh();
    Label& ended = fresh();
    Label& capped = fresh();
    mov(runBegin, p);
    lea(stop, ptr[p + static_cast<int>(most * sizeof(char16_t))]);
    if (scansVectors && kindOf(*in.units) != Kind::mixed) {
        Label& again = fresh();
        L(again);
        emitMembersAt(p, *in.units, oneByOne);
        not_(eax);
        bsf(ecx, eax);
        lea(p, ptr[p + rcx * 2]);
        cmp(ecx, vectorUnits);
        jne(ended, T_NEAR);
        cmp(p, stop);
        jb(again, T_NEAR);
        jmp(capped, T_NEAR);
    }
    L(oneByOne);
    cmp(p, stop);
    jae(capped, T_NEAR);
    loadUnit(ended);
    unlessIn(*in.units, ended);
    add(p, 2);
    jmp(oneByOne);
    L(capped);
    if (in.most > most) {
        jmp(tooLong, T_NEAR);
    }
    L(ended);
    if (in.most == most) {
        cmp(p, stop);
        cmova(p, stop);
    }
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
    if (each.records) {
        mov(rax, at(offsetof(RE_Search_Registers, choiceInEffect)));
        mov(at(offsetof(RE_Search_Registers, inEffect)), rax);
    }
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
    if (each.records) {
        mov(rax, at(offsetof(RE_Search_Registers, choiceInEffect)));
        mov(at(offsetof(RE_Search_Registers, inEffect)), rax);
    }
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

// --- where the rest can begin ---

void Program_Code::unlessStart(const RE_Instruction& first, Label& target) {
    switch (first.operation) {
        case RE_Operation::text:
        case RE_Operation::foldedText:
            mov(rax, end);
            sub(rax, p);
            cmp(rax, static_cast<std::uint32_t>(first.least * sizeof(char16_t)));
            jb(target, T_NEAR);
            unlessText(p, literalOf(first), target);
            break;
        case RE_Operation::tokenText:
            loadUnit(target);
            mov(other, at(offsetof(RE_Search_Registers, slots)));
            mov(other, qword[other + startOfToken(first)]);
            cmp(ax, word[begin + other * 2]);
            jne(target, T_NEAR);
            break;
        default:
            loadUnit(target);
            unlessTaken(first, target);
    }
}

bool Program_Code::canScanFor(const RE_Instruction& first) {
    const bool isSet = first.operation == RE_Operation::set || first.operation == RE_Operation::texts;
    return !isSet || kindOf(*first.units) != Kind::mixed;
}

/// Puts into eax one bit for each of the units from `p` on with which the rest can begin.
void Program_Code::emitFirstUnits(const RE_Instruction& first) {
    switch (first.operation) {
        case RE_Operation::set:
        case RE_Operation::texts:
            emitMembers(p, *first.units);
            return;
        case RE_Operation::tokenText:
            mov(other, at(offsetof(RE_Search_Registers, slots)));
            mov(other, qword[other + startOfToken(first)]);
            movzx(ecx, word[begin + other * 2]);
            emitEqualUnits(p, other.cvt32(), xmm0);
            break;
        case RE_Operation::unit:
            emitEqualUnits(p, first.unit, xmm0);
            break;
        case RE_Operation::eitherUnit:
            emitEitherUnit(first.unit, static_cast<char16_t>(first.most));
            break;
        default: {
            const Forms forms = literalOf(first).ignoreCase ? formsOf(first.text[0])
                                                            : Forms{{first.text[0], first.text[0]}, 1};
            emitEitherUnit(forms.list[0], forms.list[forms.count - 1]);
        }
    }
    pmovmskb(eax, xmm0);
}

void Program_Code::emitEitherUnit(char16_t one, char16_t another) {
    emitEqualUnits(p, one, xmm0);
    if (another != one) {
        emitEqualUnits(p, another, xmm1);
        por(xmm0, xmm1);
    }
}

}  // namespace corvane_machine

#endif
