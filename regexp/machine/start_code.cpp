#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/program_code.h"

#include "regexp/nodes/consume.h"
#include "regexp/nodes/seeker.h"
#include "regexp/step_meter.h"
#include "regexp/unit_set.h"

#include <algorithm>
#include <bit>
#include <optional>

namespace corvane_machine {

namespace {

constexpr int stepShift = std::countr_zero(RE_Step_Meter::unitsAStep);
constexpr int tried = 4;  // one by one before vectors are
constexpr int triedBeforeMasks = 2;

const RE_Prefix_Scan* prefixesOf(const RE_Node* root) {
    const auto* const seeker = dynamic_cast<const StringPrefixSeeker*>(root);
    return seeker != nullptr ? seeker->finder.prefixScan() : nullptr;
}

std::optional<char16_t> onlyUnit(const RE_Unit_Set* units) {
    if (units == nullptr) {
        return std::nullopt;
    }
    const RE_Unit_Ranges ranges(*units);
    const bool isOne = ranges.count == 1 && ranges.list[0].low == ranges.list[0].high;
    return isOne ? std::optional(ranges.list[0].low) : std::nullopt;
}

}  // namespace

Start_Code::Start_Code(const RE_Graph_Facts& graphFacts, const RE_Node* graphRoot, std::size_t mostBytes)
    : Program_Code(graphFacts.program, graphFacts.keepsTokens, mostBytes),
      facts(graphFacts),
      root(graphRoot) {}

// The code begins here, too: behind the question whether there is room for a start.
void Start_Code::emitStarts() {
    jmp(seekLabel, T_NEAR);
    emitFailed();
    emitNextStart();
    emitAttempt();
}

// Whoever runs the code does all else that is due behind a failed attempt: that is asked for first.
void Start_Code::emitFailed() {
    L(failedLabel);
    Label& more = exitFor(RE_Machine_Exit::failed);
    mov(rax, at(offsetof(RE_Search_Registers, steps)));
    test(eax, 2047);
    jz(more, T_NEAR);
    if (!facts.needed.empty()) {
        cmp(left, at(offsetof(RE_Search_Registers, askLeft)));
        jle(more, T_NEAR);
    }
    mov(p, start);
    emitHopeless(more);
    inc(at(offsetof(RE_Search_Registers, steps)));
    add(p, 2);
}

// As `RE_Consume::lastHopelessStart` has it, for runs that were measured.
void Start_Code::emitHopeless(Label& more) {
    const RE_Consume* const loop = facts.leadingLoop;
    if (loop == nullptr || (loop->maximum != RE_Consume::noMaximum && loop->minimum < 2)) {
        return;
    }
    const std::size_t run = offsetof(RE_Search_Registers, leadingRun);
    Label& unmeasured = fresh();
    cmp(start, at(run + offsetof(RE_Measured_Run, begin)));
    jne(loop->isNotedUpTo() ? unmeasured : more, T_NEAR);
    if (loop->maximum == RE_Consume::noMaximum) {
        mov(p, at(run + offsetof(RE_Measured_Run, end)));
        return;
    }
    mov(other, at(run + offsetof(RE_Measured_Run, end)));
    mov(rax, other);
    sub(rax, start);
    shr(rax, 1);
    cmp(rax, static_cast<std::uint32_t>(loop->minimum));
    cmovb(p, other);
    L(unmeasured);
}

void Start_Code::emitNextStart() {
    L(nextStartLabel);
    cmp(p, at(offsetof(RE_Search_Registers, lastStart)));
    ja(exitFor(RE_Machine_Exit::noStart), T_NEAR);
    L(seekLabel);
    if (facts.start.rootSeeks) {
        emitSeek();
    }
}

// Looks for a start from `p` on. A scan counts as many steps as one by the root.
void Start_Code::emitSeek() {
    const auto* const seeker = dynamic_cast<const StringStringSeeker*>(root);
    const std::optional<char16_t> alone = scansWideVectors ? onlyUnit(facts.start.units) : std::nullopt;
    if (alone) {
        const RE_Unit_Pair pair{*alone, *alone};
        emitSeekLiteral({&*alone, 1, false}, {.first = pair, .second = pair, .firstAt = 0, .secondAt = 0});
    } else if (facts.start.units != nullptr) {
        emitSeekUnits(*facts.start.units);
    } else if (root->kind == RE_Node_Kind::lineStart && scansVectors) {
        emitSeekLineStart();
    } else if (root->kind == RE_Node_Kind::textStart) {
        cmp(p, begin);
        ja(exitFor(RE_Machine_Exit::noStart), T_NEAR);
    } else if (seeker != nullptr && canSeek(seeker->string)) {
        emitSeekLiteral(seeker->string.literal(), *seeker->string.rarestUnits());
    } else if (const RE_Prefix_Scan* const scan = prefixesOf(root); scan != nullptr && scansVectors) {
        emitSeekPrefixes(*scan);
    } else {
        leavesSeekToRoot = true;
        mov(runBegin, p);
        jmp(exitFor(RE_Machine_Exit::seek), T_NEAR);
    }
}

// The start is at `runBegin`.
void Start_Code::emitFound() {
    mov(rax, runBegin);
    sub(rax, p);
    shr(rax, 1 + stepShift);
    sub(left, rax);
    mov(p, runBegin);
    cmp(p, at(offsetof(RE_Search_Registers, lastStart)));
    ja(exitFor(RE_Machine_Exit::noStart), T_NEAR);
}

// There is none up to the subject's end.
void Start_Code::emitNowhere(Label& nowhere) {
    Label& found = fresh();
    jmp(found, T_NEAR);
    L(nowhere);
    mov(rax, end);
    sub(rax, p);
    shr(rax, 1 + stepShift);
    sub(left, rax);
    jmp(exitFor(RE_Machine_Exit::noStart), T_NEAR);
    L(found);
}

void Start_Code::emitAttempt() {
    L(attemptLabel);
    cmp(left, static_cast<std::uint32_t>(mostSteps));
    jl(exitFor(RE_Machine_Exit::slow), T_NEAR);
    mov(start, p);
    mov(at(offsetof(RE_Search_Registers, inEffect)), 0);
    mov(at(offsetof(RE_Search_Registers, written)), 0);
    if (facts.start.skipsSeeker) {
        dec(left);
    }
}

/// Goes to `nowhere` unless there is a position from `runBegin` on behind which `reach` units can be read,
/// and masks those that are in a vector.
void Start_Code::emitMaskAhead(std::size_t reach, std::uint32_t most, Label& nowhere) {
    lea(rax, ptr[end - static_cast<int>(reach * sizeof(char16_t))]);
    sub(rax, runBegin);
    jbe(nowhere, T_NEAR);
    emitMask(most);
}

/// Goes on from `runBegin` with the next vector of units.
void Start_Code::emitNextVector(Label& again) {
    add(runBegin, static_cast<int>(vectorUnits * sizeof(char16_t)));
    cmp(runBegin, stop);
    jb(again, T_NEAR);
    jmp(exitFor(RE_Machine_Exit::seek), T_NEAR);
}

// Goes to `found` at the first unit from `runBegin` on that is in the set: the next few at most, or up to the
// end.
void Start_Code::emitOneByOne(const RE_Unit_Set& units, int most, Label& found, Label& nowhere) {
    Label& again = fresh();
    loadTable(units);
    L(again);
    for (int i = 0; i < std::max(most, 1); ++i) {
        Label& next = fresh();
        cmp(runBegin, end);
        jae(nowhere, T_NEAR);
        movzx(eax, word[runBegin]);
        unlessIn(units, next, true, true);
        jmp(found, T_NEAR);
        L(next);
        add(runBegin, 2);
    }
    if (most == 0) {
        jmp(again, T_NEAR);
    }
}

void Start_Code::emitSeekUnits(const RE_Unit_Set& units) {
    Label& found = fresh();
    Label& nowhere = fresh();
    mov(runBegin, p);
    emitOneByOne(units, masksVectors ? triedBeforeMasks : tried, found, nowhere);
    if (scansVectors) {
        Label& again = fresh();
        Label& tail = fresh();
        Label& hit = fresh();
        lea(stop, ptr[p + farthest * 2]);
        L(again);
        emitMembersAt(runBegin, units, tail);
        if (kindOf(units) == Kind::mixed) {
            or_(eax, ecx);
        }
        test(eax, eax);
        jnz(hit, T_NEAR);
        emitNextVector(again);
        L(hit);
        bsf(eax, eax);
        lea(runBegin, ptr[runBegin + rax * 2]);
        if (kindOf(units) == Kind::mixed) {
            movzx(eax, word[runBegin]);
            unlessIn(units, exitFor(RE_Machine_Exit::seek));
        }
        jmp(found, T_NEAR);
        L(tail);
        if (masksVectors) {
            emitMaskedTail(0, nowhere, [&] {
                emitMaskedMembers(runBegin, units);
                if (kindOf(units) == Kind::mixed) {
                    or_(eax, ecx);
                }
            });
        }
        emitOneByOne(units, 0, found, nowhere);
    } else {
        jmp(exitFor(RE_Machine_Exit::seek), T_NEAR);
    }
    emitNowhere(nowhere);
    L(found);
    emitFound();
}

void Start_Code::emitSeekLineStart() {
    Label& again = fresh();
    Label& tail = fresh();
    Label& hit = fresh();
    Label& found = fresh();
    Label& nowhere = fresh();
    mov(runBegin, p);
    cmp(p, begin);
    jbe(found, T_NEAR);
    cmp(word[p - 2], std::uint32_t{u'\n'});
    je(found, T_NEAR);
    lea(stop, ptr[p + farthest * 2]);
    L(again);
    lea(rax, ptr[runBegin + static_cast<int>(vectorUnits * 2)]);
    cmp(rax, end);
    ja(tail, T_NEAR);
    emitEqualUnits(runBegin, u'\n', xmm0);
    pmovmskb(eax, xmm0);
    test(eax, eax);
    jnz(hit, T_NEAR);
    emitNextVector(again);
    L(hit);
    bsf(eax, eax);
    lea(runBegin, ptr[runBegin + rax * 2 + 2]);
    jmp(found, T_NEAR);
    L(tail);
    if (masksVectors) {
        emitMaskedTail(0, nowhere, [&] { emitMaskedRange(runBegin, {u'\n', u'\n'}); });
    }
    Label& each = fresh();
    L(each);
    cmp(runBegin, end);
    jae(nowhere, T_NEAR);
    add(runBegin, 2);
    cmp(word[runBegin - 2], std::uint32_t{u'\n'});
    jne(each, T_NEAR);
    emitNowhere(nowhere);
    L(found);
    emitFound();
}

// Near the subject's end position after position, as `RE_Prefix_Scan::mayStandAt` has it.
void Start_Code::emitSeekPrefixes(const RE_Prefix_Scan& scan) {
    Label& again = fresh();
    Label& tail = fresh();
    Label& hit = fresh();
    Label& miss = fresh();
    Label& found = fresh();
    Label& nowhere = fresh();
    const int reach = static_cast<int>(scan.reach() * sizeof(char16_t));
    mov(runBegin, p);
    lea(stop, ptr[p + farthest * 2]);
    L(again);
    lea(rax, ptr[runBegin + static_cast<int>(vectorUnits * 2) + reach]);
    cmp(rax, end);
    ja(tail, T_NEAR);
    emitPrefixes(runBegin, scan);
    test(eax, eax);
    jnz(hit, T_NEAR);
    emitNextVector(again);
    L(hit);
    bsf(eax, eax);
    lea(runBegin, ptr[runBegin + rax * 2]);
    jmp(found, T_NEAR);
    L(miss);
    add(runBegin, 2);
    L(tail);
    if (masksVectors) {
        emitMaskedTail(scan.reach(), nowhere, [&] { emitMaskedPrefixes(runBegin, scan); });
    } else {
        lea(rax, ptr[runBegin + reach]);
        cmp(rax, end);
        jae(nowhere, T_NEAR);
        emitPrefixTest(scan, miss);
    }
    jmp(found, T_NEAR);
    emitNowhere(nowhere);
    L(found);
    emitFound();
}

/// Goes to `unfit` unless a prefix may stand at `runBegin`.
void Start_Code::emitPrefixTest(const RE_Prefix_Scan& scan, Label& unfit) {
    mov(stop.cvt32(), 0xFF);
    for (std::size_t place = 0; place < scan.depth; ++place) {
        movzx(eax, word[runBegin + static_cast<int>(scan.distance[place] * sizeof(char16_t))]);
        if (scan.saturates) {
            mov(ecx, 0xFF);
            cmp(eax, ecx);
            cmova(eax, ecx);
        }
        movzx(ebp, al);
        and_(eax, 0x0F);
        shr(ebp, 4);
        lea(other, ptr[rip + prefixTable(scan.low[place])]);
        movzx(eax, byte[other + rax]);
        and_(stop.cvt32(), eax);
        lea(other, ptr[rip + prefixTable(scan.high[place])]);
        movzx(eax, byte[other + spare]);
        and_(stop.cvt32(), eax);
        jz(unfit, T_NEAR);
    }
}

}  // namespace corvane_machine

#endif
