// Runs that release nothing, and the tokens: those that hold such a run and those that are opened and closed
// apart.
//
// A run ends in one of four ways, cheapest first: by one vector, by up to three, unit by unit up to
// `shortRun` units, or outside of the code. Longer runs are measured by the search, which counts their steps,
// remembers them, and polls for interrupts. The code is resumed at the end of the run.
//
// Tokens are written without a trail: there is no record to which an attempt in here could backtrack. The one
// choice that code keeps undoes the writes of its rest by itself.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/program_code.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/tokens.h"
#include "regexp/state/token_stack.h"
#include "regexp/units/unit_set.h"

#include <algorithm>

namespace corvane_machine {

namespace {

constexpr auto shortRun = static_cast<std::uint32_t>(RE_Consume::shortRun);
constexpr std::uint32_t longestUncounted = RE_Step_Meter::unitsAStep - 1;

}  // namespace

// Most runs end within a vector or a few: their ends are found without a branch for each unit. The upper half
// of eax is ones after the `not`, so `bsf` finds sixteen where all units are members.
void Program_Code::emitShortRun(const RE_Instruction& in, Label& ended, Label& stopped) {
    constexpr std::uint32_t fewVectors = 3;
    // So many units are less than a step of a scan: nothing has to be counted.
    static_assert(fewVectors * vectorUnits < RE_Step_Meter::unitsAStep);
    const RE_Unit_Set& units = *in.units;
    Label& again = fresh();
    Label& oneByOne = fresh();
    Label& undecided = openChoice != nullptr ? oneByOne : stopped;
    L(again);
    emitMembersAt(p, units, oneByOne);
    not_(eax);
    bsf(ecx, eax);
    lea(p, ptr[p + rcx * 2]);
    cmp(ecx, vectorUnits);
    if (in.most == vectorUnits) {
        je(ended, T_NEAR);
    } else if (in.most < fewVectors * vectorUnits) {
        je(undecided, T_NEAR);
    } else {
        Label& inside = fresh();
        jne(inside, T_NEAR);
        lea(rax, ptr[runBegin + static_cast<int>(fewVectors * vectorUnits * 2)]);
        cmp(p, rax);
        jb(again, T_NEAR);
        jmp(undecided, T_NEAR);
        L(inside);
    }
    if (kindOf(units) != Kind::mixed) {
        jmp(ended, T_NEAR);
    } else {
        // A unit above the table ends the vector, not always the run: it is tested alone.
        cmp(word[p], 0x80);
        jb(ended, T_NEAR);
    }
    L(oneByOne);
}

// Runs of a few units at most are measured by one look, and no jump depends on where they end. A bit set at
// the maximum ends the run there.
void Program_Code::emitFewUnits(const RE_Instruction& in, Label& measured) {
    const bool isNarrow = kindOf(*in.units) == Kind::range && in.most <= vectorUnits / 2;
    const std::uint32_t bitsAUnit = isNarrow ? 2 : 1;
    Label& oneByOne = fresh();
    if (isNarrow) {
        lea(rax, ptr[p + static_cast<int>(vectorUnits)]);
        cmp(rax, end);
        ja(oneByOne, T_NEAR);
        emitRangeMembersOfHalf(p, *in.units);
    } else {
        emitMembersAt(p, *in.units, oneByOne);
    }
    not_(eax);
    if (in.most * bitsAUnit < vectorUnits) {
        // A bit past the last unit allowed ends the run at the maximum at the latest.
        or_(eax, 1U << (in.most * bitsAUnit));
    }
    bsf(ecx, eax);
    lea(p, isNarrow ? ptr[p + rcx] : ptr[p + rcx * 2]);
    jmp(measured, T_NEAR);
    L(oneByOne);
}

/// Whether the match is certain once the run has ended, however long it is.
bool Program_Code::endsMatch(const RE_Instruction& run) {
    const bool isEndless = run.most == RE_Instruction::noMaximum;
    const RE_Instruction* in = run.least <= shortRun ? run.next : &run;
    while (
        in->operation == RE_Operation::endToken || in->operation == RE_Operation::pass ||
        (in->operation == RE_Operation::lineEnd && isEndless && *run.units == RE_Unit_Classes::allOfLine())) {
        in = in->next;
    }
    return in->operation == RE_Operation::matched;
}

// Leaves the end of the run in `p`, its beginning in `runBegin`. `ended`: the end is exact. `stopped`: the
// code has seen no end, but the run may continue. Within the rest of a choice more units are looked at here, as many as
// take no step: a longer run is handed over together with the choice, as whatever failed after it would have the loop
// measure it once more. Where nothing can fail after it the choices do not matter any more.
void Program_Code::emitRunEnd(const RE_Instruction& in) {
    const std::uint32_t few = openChoice != nullptr ? longestUncounted : shortRun;
    Label& ended = fresh();
    Label& stopped = fresh();
    Label& again = fresh();
    mov(runBegin, p);
    if (scansVectors && in.most >= vectorUnits) {
        emitShortRun(in, ended, stopped);
    } else if (scansVectors && kindOf(*in.units) != Kind::mixed && in.most > 1) {
        emitFewUnits(in, ended);
    }
    // Near the subject's end, and for sets that vectors cannot decide, unit by unit.
    lea(stop, ptr[runBegin + static_cast<int>(std::min(in.most, few) * 2)]);
    cmp(stop, end);
    cmova(stop, end);
    loadTable(*in.units);
    L(again);
    cmp(p, stop);
    jae(stopped, T_NEAR);
    movzx(eax, word[p]);
    unlessIn(*in.units, ended, true, true);
    add(p, 2);
    jmp(again, T_NEAR);
    L(stopped);
    if (in.most > few) {
        cmp(p, end);
        jb(openChoice != nullptr && !endsMatch(in) ? openChoice->handOver
                                                   : exitFor(RE_Machine_Exit::longRun, &in, &ended),
           T_NEAR);
    }
    L(ended);
    // The condition of `emitHopeless`, which alone reads the run.
    if (in.flag && (in.most == RE_Instruction::noMaximum || in.least > 1)) {
        emitLeadingRun(in);
    }
    if (in.least > 0) {
        lea(rax, ptr[runBegin + static_cast<int>(in.least * sizeof(char16_t))]);
        cmp(p, rax);
        jb(labelOf(in.otherwise), T_NEAR);
    }
}

// Notes the run for the walk to later starts, which are hopeless within it. A run that reached its limit says
// nothing: from the next start it could reach further. What is noted must be what `RE_Consume` and the
// program note, as one of them may continue where the code has returned.
void Program_Code::emitLeadingRun(const RE_Instruction& in) {
    Label& unsaid = fresh();
    if (in.most != RE_Instruction::noMaximum) {
        mov(rax, p);
        sub(rax, runBegin);
        shr(rax, 1);
        cmp(rax, in.most);
        jae(unsaid, T_NEAR);
    }
    mov(at(offsetof(RE_Search_Registers, leadingRun) + offsetof(RE_Measured_Run, begin)), runBegin);
    mov(at(offsetof(RE_Search_Registers, leadingRun) + offsetof(RE_Measured_Run, end)), p);
    L(unsaid);
}

// Looks at the unit after a token before the token is written, as most attempts fail there. The unit is
// tested again by its own instruction; a failure counts the step that this instruction would have taken.
void Program_Code::emitGlimpse(const RE_Instruction& next) {
    if (!isUnitTest(next) || next.otherwise->operation != RE_Operation::failed) {
        return;
    }
    Label& failed = fresh();
    loadUnit(failed);
    unlessTaken(next, failed);
    later.emplace_back([this, &failed, choice = openChoice] {
        openChoice = choice;
        L(failed);
        dec(left);
        jmp(failedTo(), T_NEAR);
    });
}

// One instruction for three nodes (the opening, the loop, the closing), and so for three steps.
void Program_Code::emitTokenRun(const RE_Instruction& in) {
    const auto& token = static_cast<const RE_Start_Token&>(*in.node);
    dec(left);
    emitRunEnd(in);
    dec(left);
    emitGlimpse(*in.next);
    mov(stop, runBegin);
    sub(stop, begin);
    shr(stop, 1);
    emitRecord(token.number);
}

// Opening a token writes no slot: only a closed group counts.
void Program_Code::emitStartToken(const RE_Instruction& in) {
    mov(rax, p);
    sub(rax, begin);
    shr(rax, 1);
    mov(other, at(offsetof(RE_Search_Registers, opened)));
    mov(qword[other + static_cast<int>(in.least * sizeof(std::size_t))], rax);
}

void Program_Code::emitEndToken(const RE_Instruction& in) {
    mov(other, at(offsetof(RE_Search_Registers, opened)));
    mov(stop, qword[other + static_cast<int>(in.least * sizeof(std::size_t))]);
    emitRecord(in.least);
}

// Writes the token from the index in `stop` to `p`. Names are in the slots from the beginning of the search.
void Program_Code::emitRecord(std::size_t number) {
    const auto slotAt = [](std::size_t index) { return static_cast<int>(index * sizeof(RE_TokenInfo)); };
    const auto lengthAt = static_cast<int>(offsetof(RE_TokenInfo, length));
    const auto tookPartAt = static_cast<int>(offsetof(RE_TokenInfo, tookPart));
    const int slot = slotAt(number);
    const auto closed = static_cast<std::uint32_t>(number + 1);
    mov(spare, at(offsetof(RE_Search_Registers, slots)));
    emitBeginSlots(number);
    mov(qword[spare + slot], stop);
    mov(rax, p);
    sub(rax, begin);
    shr(rax, 1);
    sub(rax, stop);
    mov(qword[spare + slot + lengthAt], rax);
    mov(byte[spare + slot + tookPartAt], 1);
    if (!keepsTokens) {
        mov(at(offsetof(RE_Search_Registers, inEffect)), closed);
    }
}

// Empties the slots below the token that this attempt has not written, as they may hold what another attempt
// left there. `spare` is the first slot. `written` is the number of slots that are this attempt's.
void Program_Code::emitBeginSlots(std::size_t number) {
    const auto lengthAt = static_cast<int>(offsetof(RE_TokenInfo, length));
    const auto tookPartAt = static_cast<int>(offsetof(RE_TokenInfo, tookPart));
    static_assert(sizeof(RE_TokenInfo) == 32, "the shift below");
    const auto closed = static_cast<std::uint32_t>(number + 1);
    Label& known = fresh();
    Label& again = fresh();
    Label& none = fresh();
    // One comparison in the common case, where this attempt has written the slot or a higher one before.
    mov(other, at(offsetof(RE_Search_Registers, written)));
    cmp(other, static_cast<std::uint32_t>(number));
    ja(known, T_NEAR);
    L(again);
    je(none, T_NEAR);
    mov(rax, other);
    shl(rax, 5);
    mov(qword[spare + rax], 0);
    mov(qword[spare + rax + lengthAt], 0);
    mov(byte[spare + rax + tookPartAt], 0);
    inc(other);
    cmp(other, static_cast<std::uint32_t>(number));
    jmp(again, T_NEAR);
    L(none);
    mov(at(offsetof(RE_Search_Registers, written)), closed);
    if (keepsTokens) {
        mov(at(offsetof(RE_Search_Registers, inEffect)), closed);
    }
    L(known);
}

// Compares unit by unit: the texts of most tokens are short, and long ones are left to the match loop, which
// counts their steps. Nothing is folded: patterns that ignore case have no such instruction.
void Program_Code::emitTokenText(const RE_Instruction& in) {
    Label& otherwise = labelOf(in.otherwise);
    const int slot = static_cast<int>(in.least * sizeof(RE_TokenInfo));
    // A token that is not in effect matches nothing.
    cmp(at(offsetof(RE_Search_Registers, inEffect)), in.least);
    jbe(otherwise, T_NEAR);
    mov(spare, at(offsetof(RE_Search_Registers, slots)));
    mov(other, qword[spare + slot + static_cast<int>(offsetof(RE_TokenInfo, length))]);
    // The comparison of a long text counts for more than this step.
    inc(left);
    cmp(other, static_cast<std::uint32_t>(RE_Step_Meter::unitsAStep));
    jae(leaveAt(in), T_NEAR);
    dec(left);
    mov(rax, end);
    sub(rax, p);
    shr(rax, 1);
    cmp(rax, other);
    jb(otherwise, T_NEAR);
    Label& again = fresh();
    Label& same = fresh();
    mov(rax, qword[spare + slot]);
    lea(rax, ptr[begin + rax * 2]);
    mov(stop, p);
    L(again);
    sub(other, 1);
    jb(same, T_NEAR);
    // The lower half of `spare`, which is not needed any more.
    mov(bp, word[rax]);
    cmp(bp, word[stop]);
    jne(otherwise, T_NEAR);
    add(rax, 2);
    add(stop, 2);
    jmp(again, T_NEAR);
    L(same);
    mov(p, stop);
}

}  // namespace corvane_machine

#endif
