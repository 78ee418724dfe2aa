// Code of the ways to the next start for processors that mask vectors.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/start_code.h"
#include "regexp/units/unit_set.h"

namespace corvane_machine {

namespace {

constexpr std::size_t unitBytes = sizeof(char16_t);
constexpr std::uint32_t wideUnits = 32;

}  // namespace

/// Goes to `nowhere` unless there is a position from `runBegin` on behind which `reach` units can be read,
/// and masks those that are in a vector.
void Start_Code::emitMaskAhead(std::size_t reach, std::uint32_t most, Label& nowhere) {
    lea(rax, ptr[end - static_cast<int>(reach * unitBytes)]);
    sub(rax, runBegin);
    jbe(nowhere, T_NEAR);
    emitMask(most);
}

// The first vector is masked, and so is the last. Those between them are looked at two by two, and lie as
// memory is divided.
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
    and_(eax, step - 1);
    sub(runBegin, rax);
    L(again);
    emitApart(runBegin, sought, false, zmm24);
    emitApart(runBegin + static_cast<std::size_t>(step), sought, false, zmm25);
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
    kunpckdq(k1, k2, k1);
    kmovq(rax, k1);
    emitCandidates(literal, found);
    jmp(more, T_NEAR);
}

/// Goes to `found` where the literal stands at a position of which there is a bit in rax.
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

Start_Code::Probe_Units::Probe_Units(const RE_Literal_Probe& probe) {
    list[count++] = {probe.first, probe.firstAt};
    if (probe.secondAt != probe.firstAt) {
        list[count++] = {probe.second, probe.secondAt};
    }
    if (probe.hasThird) {
        list[count++] = {probe.third, probe.thirdAt};
    }
}

/// Puts what each unit is compared with into zmm16 and the next, and the bits that do not count into zmm20
/// and the next.
void Start_Code::emitSought(const Probe_Units& sought) {
    for (int i = 0; i < sought.count; ++i) {
        const RE_Unit_Pair pair = sought.list[i].units;
        vpbroadcastw(Xbyak::Zmm(16 + i), word[rip + words(static_cast<char16_t>(pair.one | pair.other))]);
        if (pair.one != pair.other) {
            vpbroadcastw(Xbyak::Zmm(20 + i), word[rip + words(static_cast<char16_t>(pair.one ^ pair.other))]);
        }
    }
}

/// Puts zeros into `result` for the positions from `from` on at which all the units stand. Pairs that differ
/// in more than a bit may stand for others, too.
void Start_Code::emitApart(const Xbyak::RegExp& from, const Probe_Units& sought, bool masked,
                           const Xbyak::Zmm& result) {
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
