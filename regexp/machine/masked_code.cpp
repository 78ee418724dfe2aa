// Code for processors that mask vectors: what lies behind the subject's end is not read, so that a vector may
// reach beyond it and no unit is left to be looked at by itself. It keeps to registers that leave no upper
// half to be cleared.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/unit_code.h"
#include "regexp/seek/kernels.h"
#include "regexp/units/unit_set.h"

namespace corvane_machine {

namespace {

constexpr std::uint8_t isAtMost = 2;
constexpr std::uint8_t isNot = 4;
constexpr std::uint8_t andThree = 0x80;

}  // namespace

void Unit_Code::emitMask(std::uint32_t most) {
    mov(ecx, most * static_cast<std::uint32_t>(sizeof(char16_t)));
    cmp(rax, rcx);
    cmovb(ecx, eax);
    shr(ecx, 1);
    mov(eax, 0xFFFFFFFF);
    bzhi(eax, eax, ecx);
    kmovd(k1, eax);
}

void Unit_Code::emitMaskedMembers(const Reg64& from, const RE_Unit_Set& units) {
    const Kind kind = kindOf(units);
    if (kind == Kind::range) {
        emitMaskedRange(from, RE_Unit_Ranges(units).list[0]);
        return;
    }
    vmovdqu16(ymm16 | k1 | T_z, ptr[from]);
    if (kind == Kind::allBut) {
        const RE_Units_Outside outside(units);
        for (std::size_t i = 0; i < outside.count; ++i) {
            vpbroadcastw(ymm17, word[rip + words(outside.list[i])]);
            vpcmpuw(k1 | k1, ymm16, ymm17, isNot);
        }
        kmovd(eax, k1);
        return;
    }
    // Units from 0x80 on become bytes from 0x80 on, which find nothing in the rows.
    vpmovuswb(xmm16, ymm16);
    vpsrlw(xmm17, xmm16, 4);
    vpandd(xmm17, xmm17, ptr[rip + words(0x0F0F)]);
    vmovdqa32(xmm18, ptr[rip + rowsOf(units)]);
    vmovdqa32(xmm19, ptr[rip + rowBits()]);
    vpshufb(xmm18, xmm18, xmm16);
    vpshufb(xmm19, xmm19, xmm17);
    vptestmb(k2 | k1, xmm18, xmm19);
    if (kind != Kind::noOthers) {
        vpmovb2m(k3, xmm16);
    }
    if (kind == Kind::allOthers) {
        kord(k2, k2, k3);
    }
    kmovd(eax, k2);
    if (kind == Kind::mixed) {
        kmovd(ecx, k3);
    }
}

void Unit_Code::emitMaskedRange(const Reg64& from, RE_Unit_Ranges::Range range) {
    vpbroadcastw(ymm17, word[rip + words(range.low)]);
    if (range.low == range.high) {
        vpcmpeqw(k2 | k1, ymm17, ptr[from]);
    } else {
        vmovdqu16(ymm16 | k1 | T_z, ptr[from]);
        vpbroadcastw(ymm18, word[rip + words(static_cast<char16_t>(range.high - range.low))]);
        vpsubw(ymm16, ymm16, ymm17);
        vpcmpuw(k2 | k1, ymm16, ymm18, isAtMost);
    }
    kmovd(eax, k2);
}

void Unit_Code::emitMaskedPrefixes(const Reg64& from, const RE_Prefix_Scan& scan) {
    vmovdqa32(xmm21, ptr[rip + words(0x0F0F)]);
    for (std::size_t place = 0; place < scan.depth; ++place) {
        vmovdqu16(ymm16 | k1 | T_z, ptr[from + static_cast<int>(scan.distance[place] * sizeof(char16_t))]);
        if (scan.saturates) {
            vpmovuswb(xmm16, ymm16);
        } else {
            vpmovwb(xmm16, ymm16);
        }
        vpsrlw(xmm17, xmm16, 4);
        vpandd(xmm16, xmm16, xmm21);
        vpandd(xmm17, xmm17, xmm21);
        vmovdqa32(xmm18, ptr[rip + prefixTable(scan.low[place])]);
        vmovdqa32(xmm19, ptr[rip + prefixTable(scan.high[place])]);
        vpshufb(xmm18, xmm18, xmm16);
        vpshufb(xmm19, xmm19, xmm17);
        if (place == 0) {
            vpandd(xmm20, xmm18, xmm19);
        } else {
            vpternlogd(xmm20, xmm18, xmm19, andThree);
        }
    }
    vptestmb(k2 | k1, xmm20, xmm20);
    kmovd(eax, k2);
}

}  // namespace corvane_machine

#endif
