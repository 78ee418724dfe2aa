// Where the ends of a run are tried one after another: the shortest or the longest end at which the rest can
// begin, and on from there. `choice_code.cpp` has the frame around it.
//
// Both kinds step over ends at which the rest cannot begin, as the graph does (`RE_Consume`): the ends tried,
// and so the steps, are the same. A scan that shows nothing within `nearUnits` is undecided: then the match
// loop does it, which counts the steps of longer scans.
//
// `limit` is the last end to be tried: the farthest of a lazy run, the shortest of a greedy one.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/program_code.h"
#include "regexp/state/token_stack.h"
#include "regexp/units/unit_set.h"

#include <algorithm>

namespace corvane_machine {

// `leave` may be used until an end was chosen, `handOver` afterwards. The step counted before a scan that
// turns out undecided is uncounted in the first case; in the second the counts of taking the choice up again
// are, too, and the code falls through into `handOver`.
void Program_Code::emitLazyRun(Choice& each, Label& failed) {
    const RE_Instruction& in = *each.run;
    Label& leaveLater = fresh();
    Label& notHere = fresh();
    if (in.most == RE_Instruction::noMaximum) {
        // No end lies past the subject's, nor past the maximum.
        mov(kept(each, offsetof(RE_Kept_Choice, limit)), end);
    } else {
        lea(rax, ptr[p + static_cast<int>(in.most * sizeof(char16_t))]);
        cmp(rax, end);
        cmova(rax, end);
        mov(kept(each, offsetof(RE_Kept_Choice, limit)), rax);
    }
    emitLeast(in, failed);
    if (each.first != nullptr) {
        unlessStart(*each.first, notHere);
    }
    jmp(each.chosen, T_NEAR);
    L(notHere);
    if (each.first != nullptr) {
        cmp(p, kept(each, offsetof(RE_Kept_Choice, limit)));
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
    // As if the choice had not been taken up again.
    dec(at(offsetof(RE_Search_Registers, steps)));
    inc(at(offsetof(RE_Search_Registers, memoCountdown)));
}

// Consumes the units that every such run has, one by one: there are few.
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

// From the end at `p` to the next longer one at which the rest can begin, and to `chosen` with that. Goes to
// `dead` where the run ends before one, or has reached its maximum.
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
    // One vector tells where the run ends and where the rest can begin; whichever comes first is looked at by
    // the tests below, for the rest wins at the unit that ends the run.
    if (scansVectors && kindOf(*in.units) != Kind::mixed && canScanFor(first)) {
        Label& met = fresh();
        lea(rax, ptr[p + static_cast<int>(vectorUnits * sizeof(char16_t))]);
        cmp(rax, end);
        ja(oneByOne, T_NEAR);
        emitFirstUnits(first);
        // Kept in a register that the membership test does not use.
        mov(ebp, eax);
        emitMembers(p, *in.units);
        xor_(eax, 0xFFFF);
        or_(eax, ebp);
        bsf(ecx, eax);
        lea(rax, ptr[p + rcx * 2]);
        // Sixteen units of which none ends the run nor begins the rest leave `p`, and the flags say so: `lea`
        // keeps them.
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
        cmp(p, kept(each, offsetof(RE_Kept_Choice, limit)));
        ja(dead, T_NEAR);
    }
    jmp(each.chosen, T_NEAR);
    L(notHere);
    // Without a vector the scan stays as short as with one.
    lea(rax, ptr[runBegin + static_cast<int>((nearUnits - 1) * sizeof(char16_t))]);
    cmp(p, rax);
    jae(undecided, T_NEAR);
    L(nextUnit);
    loadUnit(dead);
    unlessIn(*in.units, dead);
    add(p, 2);
    jmp(again, T_NEAR);
}

// The whole run first, then back from its end. Each end at which the rest can begin counts a step, and so
// does the first, whether it can or not: that is the one that the run itself takes.
void Program_Code::emitGivingRun(Choice& each, Label& failed) {
    const RE_Instruction& in = *each.run;
    Label& longest = fresh();
    // No choice so far: a long run is left to the match loop from its beginning.
    emitNearRun(in, each.leave);
    if (in.flag) {
        emitLeadingRun(in);
    }
    lea(rax, ptr[runBegin + static_cast<int>(in.least * sizeof(char16_t))]);
    cmp(p, rax);
    jb(failed, T_NEAR);
    mov(kept(each, offsetof(RE_Kept_Choice, limit)), rax);
    L(longest);
    dec(left);
    if (each.first != nullptr) {
        // Back from the longest end. The first test is of that end itself; an end that is found later counts
        // a step of its own.
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
        cmp(p, kept(each, offsetof(RE_Kept_Choice, limit)));
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

// Leaves the end of the run in `p`, its beginning in `runBegin`. A run of more than `nearUnits` is left to
// the match loop before anything is chosen.
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
    // The last vector may have shown units past the maximum.
    if (in.most == most) {
        cmp(p, stop);
        cmova(p, stop);
    }
}

// --- where the rest can begin ---

// Jumps to `target` unless the rest can begin at `p` with `first`. A text is compared as a whole; of a
// token's text the first unit is, which `emitChoiceEntry` has made sure of.
void Program_Code::unlessStart(const RE_Instruction& first, Label& target) {
    if (first.operation == RE_Operation::text || first.operation == RE_Operation::foldedText) {
        mov(rax, end);
        sub(rax, p);
        cmp(rax, static_cast<std::uint32_t>(first.least * sizeof(char16_t)));
        jb(target, T_NEAR);
        unlessText(p, literalOf(first), target);
        return;
    }
    loadUnit(target);
    if (first.operation == RE_Operation::tokenText) {
        mov(other, at(offsetof(RE_Search_Registers, slots)));
        mov(other, qword[other + startOfToken(first)]);
        cmp(ax, word[begin + other * 2]);
        jne(target, T_NEAR);
        return;
    }
    unlessTaken(first, target);
}

// Whether `emitFirstUnits` can decide all units. Mixed sets leave some open.
bool Program_Code::canScanFor(const RE_Instruction& first) {
    const bool isSet = first.operation == RE_Operation::set || first.operation == RE_Operation::texts;
    return !isSet || kindOf(*first.units) != Kind::mixed;
}

/// Puts into eax one bit for each of the units from `p` on with which the rest can begin.
void Program_Code::emitFirstUnits(const RE_Instruction& first) {
    if (first.operation == RE_Operation::set || first.operation == RE_Operation::texts) {
        emitMembers(p, *first.units);
        return;
    }
    if (first.operation == RE_Operation::tokenText) {
        mov(other, at(offsetof(RE_Search_Registers, slots)));
        mov(other, qword[other + startOfToken(first)]);
        movzx(ecx, word[begin + other * 2]);
        emitEqualUnits(p, other.cvt32(), xmm0);
    } else if (first.operation == RE_Operation::unit) {
        emitEqualUnits(p, first.unit, xmm0);
    } else if (first.operation == RE_Operation::eitherUnit) {
        emitEitherUnit(first.unit, static_cast<char16_t>(first.most));
    } else {
        // Of a text the first unit, in both its forms where case is ignored.
        const Forms forms =
            literalOf(first).ignoreCase ? formsOf(first.text[0]) : Forms{{first.text[0], first.text[0]}, 1};
        emitEitherUnit(forms.list[0], forms.list[forms.count - 1]);
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
