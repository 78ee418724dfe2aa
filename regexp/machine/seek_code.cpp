// Code that looks for the units, lines and prefixes that matches start with.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/start_code.h"

#include "regexp/units/unit_set.h"

#include <algorithm>

namespace corvane_machine {

namespace {

constexpr int tried = 4;  // one by one before vectors are
constexpr int triedBeforeMasks = 2;

}  // namespace

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
