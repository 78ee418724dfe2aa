// Code that looks for the literal that matches start with.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/start_code.h"

#include "regexp/nodes/string.h"

namespace corvane_machine {

bool Start_Code::canSeek(const RE_String& string) const {
    if (string.rarestUnits() == nullptr || string.length > longestText) {
        return false;
    }
    return string.ignoreCase ? scansWideVectors && hasFewForms(string.literal()) : scansVectors;
}

// The positions of which the first vectors are full are looked at together, the others one by one.
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
    lea(ecx, ptr[rax - 1]);
    and_(eax, ecx);
    jnz(hit, T_NEAR);
    jmp(next, T_NEAR);
}

// Two vectors of sixteen units at once, of whose units each has two bits in rax.
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
    L(done);
    vzeroupper();
    lea(rax, ptr[runBegin + bytes]);
    cmp(rax, end);
    jbe(exitFor(RE_Machine_Exit::seek), T_NEAR);
}

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

}  // namespace corvane_machine

#endif
