// The search for the literal that every match begins with.
//
// Two or three rare units of the literal (its probe) are compared at their distances from each position, many
// positions at a time. Where all of them are met the whole literal is compared, unit by unit: the probe may
// be met by accident. There are three forms, for narrow, wide and masked vectors; all stop at the first
// position at which the literal occurs.
//
// Units are read from the positions of a vector up to the length of the literal past them: the limits of the
// loops see to it that these lie before the subject's end. Masked vectors do not read what is masked.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/program_code.h"
#include "regexp/nodes/string.h"

namespace corvane_machine {

namespace {

constexpr std::size_t unitBytes = sizeof(char16_t);
// The masked form has vectors of 64 bytes.
constexpr std::uint32_t wideUnits = 32;

}  // namespace

// A literal without rare units, and one of which too many units have several forms, is left to the root. The
// narrow scan compares with one form of a unit only.
bool Start_Code::canSeek(const RE_String& string) const {
    if (string.rarestUnits() == nullptr || string.length > longestText) {
        return false;
    }
    return string.ignoreCase ? scansWideVectors && hasFewForms(string.literal()) : scansVectors;
}

// The positions for which whole vectors can be read are tested together, the last ones one by one.
void Start_Code::emitSeekLiteral(const RE_Literal& literal, const RE_Literal_Probe& probe) {
    Label& tail = fresh();
    Label& miss = fresh();
    Label& found = fresh();
    Label& nowhere = fresh();
    if (masksVectors) {
        emitMaskedLiteral(literal, probe, found, nowhere);
        emitNowhere(nowhere);
        L(found);
        emitFound();
        return;
    }
    const int bytes = static_cast<int>(literal.length * sizeof(char16_t));
    mov(runBegin, p);
    if (scansWideVectors) {
        emitWideLiteral(literal, probe, found);
    } else {
        emitNarrowLiteral(literal, probe, found, tail);
    }
    L(tail);
    lea(stop, ptr[end - bytes]);
    sub(runBegin, 2);
    L(miss);
    add(runBegin, 2);
    cmp(runBegin, stop);
    ja(nowhere, T_NEAR);
    unlessText(runBegin, literal, miss);
    jmp(found, T_NEAR);
    emitNowhere(nowhere);
    L(found);
    emitFound();
}

// Sixteen positions a turn, one bit each in eax. `hit` tests the lowest bit and clears it where the literal
// is not there.
void Start_Code::emitNarrowLiteral(const RE_Literal& literal, const RE_Literal_Probe& probe, Label& found,
                                   Label& tail) {
    Label& again = fresh();
    Label& next = fresh();
    Label& hit = fresh();
    Label& mismatch = fresh();
    const int bytes = static_cast<int>((literal.length + vectorUnits) * sizeof(char16_t));
    lea(stop, ptr[p + farthest * 2]);
    L(again);
    lea(rax, ptr[runBegin + bytes]);
    cmp(rax, end);
    ja(tail, T_NEAR);
    emitEqualUnits(runBegin + probe.firstAt * 2, probe.first.one, xmm0);
    if (probe.secondAt != probe.firstAt) {
        emitEqualUnits(runBegin + probe.secondAt * 2, probe.second.one, xmm1);
        pand(xmm0, xmm1);
    }
    pmovmskb(eax, xmm0);
    test(eax, eax);
    jnz(hit, T_NEAR);
    L(next);
    emitNextVector(again);
    L(hit);
    bsf(ecx, eax);
    lea(spare, ptr[runBegin + rcx * 2]);
    unlessText(spare, literal, mismatch);
    mov(runBegin, spare);
    jmp(found, T_NEAR);
    L(mismatch);
    // Clears the lowest bit; `blsr` may be missing on such processors.
    lea(ecx, ptr[rax - 1]);
    and_(eax, ecx);
    jnz(hit, T_NEAR);
    jmp(next, T_NEAR);
}

// Thirty-two positions a turn. A comparison gives two equal bits for each unit, so a bit number is an offset
// in bytes, and a mismatch has to clear two bits. `vzeroupper` is due on every way out: code without wide
// vectors runs slowly while their upper halves are in use.
void Start_Code::emitWideLiteral(const RE_Literal& literal, const RE_Literal_Probe& probe, Label& found) {
    constexpr int step = 2 * static_cast<int>(vectorUnits * sizeof(char16_t));
    const int bytes = static_cast<int>(literal.length * sizeof(char16_t)) + step;
    const bool isAlone = probe.firstAt == probe.secondAt;
    Label& again = fresh();
    Label& next = fresh();
    Label& done = fresh();
    Label& hit = fresh();
    Label& mismatch = fresh();
    emitPair(probe.first, ymm2, ymm6);
    if (!isAlone) {
        emitPair(probe.second, ymm3, ymm7);
    }
    // One limit serves the loop: the farthest position worth scanning, or the last from which two vectors can
    // be read.
    lea(stop, ptr[p + farthestLiteral * 2]);
    lea(rax, ptr[end - bytes]);
    cmp(stop, rax);
    cmova(stop, rax);
    cmp(runBegin, stop);
    ja(done, T_NEAR);
    L(again);
    for (const int half : {0, 1}) {
        const Xbyak::RegExp units = runBegin + static_cast<std::size_t>(half * step / 2);
        emitEqualPair(units + probe.firstAt * sizeof(char16_t), probe.first, ymm2, ymm6,
                      half == 0 ? ymm0 : ymm1);
        if (!isAlone) {
            emitEqualPair(units + probe.secondAt * sizeof(char16_t), probe.second, ymm3, ymm7,
                          half == 0 ? ymm4 : ymm5);
        }
    }
    if (!isAlone) {
        vpand(ymm0, ymm0, ymm4);
        vpand(ymm1, ymm1, ymm5);
    }
    vpor(ymm4, ymm0, ymm1);
    vptest(ymm4, ymm4);
    jz(next, T_NEAR);
    vpmovmskb(eax, ymm0);
    vpmovmskb(ecx, ymm1);
    shl(rcx, 32);
    or_(rax, rcx);
    L(hit);
    bsf(rcx, rax);
    lea(spare, ptr[runBegin + rcx]);
    unlessText(spare, literal, mismatch);
    vzeroupper();
    mov(runBegin, spare);
    jmp(found, T_NEAR);
    L(mismatch);
    for (int bit = 0; bit < 2; ++bit) {
        lea(rcx, ptr[rax - 1]);
        and_(rax, rcx);
    }
    jnz(hit, T_NEAR);
    L(next);
    add(runBegin, step);
    cmp(runBegin, stop);
    jbe(again, T_NEAR);
    // Either the end is near, and the caller's tests of single positions do the rest, or the scan has come
    // far enough.
    L(done);
    vzeroupper();
    lea(rax, ptr[runBegin + bytes]);
    cmp(rax, end);
    jbe(exitFor(RE_Machine_Exit::seek), T_NEAR);
}

// A unit, and its other form where it has one, in all places of a vector each. Loaded once, before the loop.
void Start_Code::emitPair(RE_Unit_Pair pair, const Xbyak::Ymm& one, const Xbyak::Ymm& second) {
    vpbroadcastw(one, word[rip + words(pair.one)]);
    if (pair.other != pair.one) {
        vpbroadcastw(second, word[rip + words(pair.other)]);
    }
}

void Start_Code::emitEqualPair(const Xbyak::RegExp& units, RE_Unit_Pair pair, const Xbyak::Ymm& one,
                               const Xbyak::Ymm& second, const Xbyak::Ymm& result) {
    vpcmpeqw(result, one, ptr[units]);
    if (pair.other != pair.one) {
        vpcmpeqw(ymm8, second, ptr[units]);
        vpor(result, result, ymm8);
    }
}

// The first vector is masked near the end only, and so is the last. Those between them are tested two by two,
// and are aligned for the unit that is looked for first: a load that crosses a line of the cache costs twice.
//
// The aligned vectors may begin before the position that was reached, so some positions are tested twice,
// which changes nothing: they have no literal.
void Start_Code::emitMaskedLiteral(const RE_Literal& literal, const RE_Literal_Probe& probe, Label& found,
                                   Label& nowhere) {
    constexpr int step = static_cast<int>(wideUnits * unitBytes);
    const int ahead = static_cast<int>(literal.length * unitBytes) + 2 * step;
    Label& masked = fresh();
    Label& first = fresh();
    Label& again = fresh();
    Label& more = fresh();
    Label& hit = fresh();
    Label& far = exitFor(RE_Machine_Exit::seek);
    const Probe_Units sought(probe);
    emitSought(sought);
    mov(runBegin, p);
    lea(stop, ptr[p + farthestLiteral * 2]);
    lea(rax, ptr[p + ahead - step]);
    // All lanes count, unless the end is so near that the first vector has to be masked.
    kxnord(k1, k1, k1);
    cmp(rax, end);
    jbe(first);
    L(masked);
    emitMaskAhead(literal.length - 1, wideUnits, nowhere);
    L(first);
    emitApart(runBegin, sought, true, zmm24);
    vptestnmw(k2 | k1, zmm24, zmm24);
    kmovd(eax, k2);
    emitCandidates(literal, found);
    add(runBegin, step);
    cmp(runBegin, stop);
    jae(far, T_NEAR);
    lea(rax, ptr[runBegin + ahead]);
    cmp(rax, end);
    ja(masked, T_NEAR);
    lea(rax, ptr[runBegin + probe.firstAt * unitBytes]);
    // Back to where the unit looked for first is aligned, at most a vector: nothing untested is passed over.
    and_(eax, step - 1);
    sub(runBegin, rax);
    L(again);
    emitApart(runBegin, sought, false, zmm24);
    emitApart(runBegin + static_cast<std::size_t>(step), sought, false, zmm25);
    // The least of two differences is zero where one of them is: one test for both vectors.
    vpminuw(zmm26, zmm24, zmm25);
    vptestnmw(k1, zmm26, zmm26);
    kortestd(k1, k1);
    jnz(hit);
    L(more);
    add(runBegin, 2 * step);
    cmp(runBegin, stop);
    jae(far, T_NEAR);
    lea(rax, ptr[runBegin + ahead]);
    cmp(rax, end);
    jbe(again, T_NEAR);
    jmp(masked, T_NEAR);
    L(hit);
    vptestnmw(k1, zmm24, zmm24);
    vptestnmw(k2, zmm25, zmm25);
    // 64 positions, those of the second vector in the upper half.
    kunpckdq(k1, k2, k1);
    kmovq(rax, k1);
    emitCandidates(literal, found);
    jmp(more, T_NEAR);
}

/// Goes to `found` where the literal occurs at a position whose bit in rax is set, the first such position.
/// Falls through where it occurs at none.
void Start_Code::emitCandidates(const RE_Literal& literal, Label& found) {
    Label& candidate = fresh();
    Label& mismatch = fresh();
    Label& none = fresh();
    test(rax, rax);
    jz(none, T_NEAR);
    L(candidate);
    tzcnt(rcx, rax);
    lea(spare, ptr[runBegin + rcx * 2]);
    unlessText(spare, literal, mismatch);
    mov(runBegin, spare);
    jmp(found, T_NEAR);
    L(mismatch);
    blsr(rax, rax);
    jnz(candidate, T_NEAR);
    L(none);
}

// A literal of one unit has the same place twice in its probe.
Start_Code::Probe_Units::Probe_Units(const RE_Literal_Probe& probe) {
    list[count++] = {probe.first, probe.firstAt};
    if (probe.secondAt != probe.firstAt) {
        list[count++] = {probe.second, probe.secondAt};
    }
    if (probe.hasThird) {
        list[count++] = {probe.third, probe.thirdAt};
    }
}

/// Puts what each unit is compared with into zmm16 and the following ones, and the bits that do not count
/// into zmm20 and the following ones. Two forms that differ in one bit are equal once that bit is set in
/// both.
void Start_Code::emitSought(const Probe_Units& sought) {
    for (int i = 0; i < sought.count; ++i) {
        const RE_Unit_Pair pair = sought.list[i].units;
        vpbroadcastw(Xbyak::Zmm(16 + i), word[rip + words(static_cast<char16_t>(pair.one | pair.other))]);
        if (pair.one != pair.other) {
            vpbroadcastw(Xbyak::Zmm(20 + i), word[rip + words(static_cast<char16_t>(pair.one ^ pair.other))]);
        }
    }
}

/// Puts zeros into `result` for the positions from `from` on at which all the units are met. Differences are
/// gathered by `or`, so that one test decides about all units. Forms that differ in more than one bit let other
/// units pass as well.
void Start_Code::emitApart(const Xbyak::RegExp& from, const Probe_Units& sought, bool masked,
                           const Xbyak::Zmm& result) {
    // The truth table of `result | (wanted ^ units)`.
    constexpr std::uint8_t orDiffers = 0xF6;
    for (int i = 0; i < sought.count; ++i) {
        const auto& [pair, at] = sought.list[i];
        const Xbyak::Address there = ptr[from + at * unitBytes];
        const Xbyak::Zmm wanted(16 + i);
        const bool isLoaded = masked || pair.one != pair.other;
        if (masked) {
            vmovdqu16(zmm28 | k1 | T_z, there);
        }
        if (pair.one != pair.other) {
            vpord(zmm28, Xbyak::Zmm(20 + i), masked ? static_cast<const Xbyak::Operand&>(zmm28) : there);
        }
        const Xbyak::Operand& units = isLoaded ? static_cast<const Xbyak::Operand&>(zmm28) : there;
        if (i == 0) {
            vpxord(result, wanted, units);
        } else {
            vpternlogd(result, wanted, units, orDiffers);
        }
    }
}

}  // namespace corvane_machine

#endif
