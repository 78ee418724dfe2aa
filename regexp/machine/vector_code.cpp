// Tests of sixteen units at a time: which of them are in a set, and at which of them a prefix may begin.
//
// The answer is always a word with one bit for each unit, the first unit lowest, so that `bsf` finds the
// first hit. Three techniques carry the file:
//
//     ranges    subtract the low end, then subtract the size with saturation: zero is a member
//     tables    units packed to bytes; the low four bits select a row by a shuffle, the next three a bit of the row
//     masks     where the processor masks vectors, units past the subject's end are not read: no rest is left to be
//               tested one by one
//
// Trap: bytes are units with saturation, so that all units from 0xFF on look alike. Whoever packs units must
// see to it that those above the table are decided otherwise, or reported as undecided.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/unit_code.h"

#include "regexp/seek/kernels.h"
#include "regexp/units/unit_set.h"

#include <algorithm>
#include <iterator>

namespace corvane_machine {

// The order matters: a range or a small complement is decided exactly for all units, also above the table.
Unit_Code::Kind Unit_Code::kindOf(const RE_Unit_Set& units) {
    if (RE_Unit_Ranges(units).count == 1) {
        return Kind::range;
    }
    if (RE_Units_Outside(units).count <= RE_Units_Outside::most) {
        return Kind::allBut;
    }
    if (units.holdsAllFrom(tableUnits)) {
        return Kind::allOthers;
    }
    return units.holdsAnyFrom(tableUnits) ? Kind::mixed : Kind::noOthers;
}

void Unit_Code::emitMembersAt(const Reg64& from, const RE_Unit_Set& units, Label& tooNear) {
    lea(rax, ptr[from + static_cast<int>(vectorUnits * 2)]);
    cmp(rax, end);
    ja(tooNear, T_NEAR);
    emitMembers(from, units);
}

void Unit_Code::emitMembers(const Reg64& from, const RE_Unit_Set& units) {
    movdqu(xmm0, ptr[from]);
    movdqu(xmm1, ptr[from + 16]);
    pxor(xmm2, xmm2);
    if (kindOf(units) == Kind::range) {
        emitRangeMembers(RE_Unit_Ranges(units).list[0]);
        return;
    }
    if (kindOf(units) == Kind::allBut) {
        emitEqualToAny(RE_Units_Outside(units));
        xor_(eax, 0xFFFF);
        return;
    }
    if (const RE_Units_Outside members(units, false); members.count <= RE_Units_Outside::few) {
        emitEqualToAny(members);
        xor_(ecx, ecx);
        return;
    }
    // Packed with saturation, units from 0x80 on become bytes from 0x80 on: their sign bits tell them apart.
    movdqa(xmm3, ptr[rip + words(0x00FF)]);
    pminuw(xmm0, xmm3);
    pminuw(xmm1, xmm3);
    packuswb(xmm0, xmm1);
    if (kindOf(units) != Kind::noOthers) {
        pmovmskb(ecx, xmm0);
    }
    movdqa(xmm3, ptr[rip + words(0x0F0F)]);
    movdqa(xmm1, xmm0);
    psrlw(xmm1, 4);
    pand(xmm1, xmm3);
    pand(xmm0, xmm3);
    // The upper four bits of such bytes select no bit of a row: the second constant is zero there.
    movdqa(xmm4, ptr[rip + rowsOf(units)]);
    movdqa(xmm5, ptr[rip + rowBits()]);
    pshufb(xmm4, xmm0);
    pshufb(xmm5, xmm1);
    pand(xmm4, xmm5);
    pcmpeqb(xmm4, xmm2);
    pmovmskb(eax, xmm4);
    xor_(eax, 0xFFFF);
    if (kindOf(units) == Kind::allOthers) {
        or_(eax, ecx);
    }
}

// Gathers in xmm2, which is zero, the units that are one of these.
void Unit_Code::emitEqualToAny(const RE_Units_Outside& sought) {
    for (std::size_t i = 0; i < sought.count; ++i) {
        movdqa(xmm3, ptr[rip + words(sought.list[i])]);
        movdqa(xmm4, xmm3);
        pcmpeqw(xmm3, xmm0);
        pcmpeqw(xmm4, xmm1);
        packsswb(xmm3, xmm4);
        por(xmm2, xmm3);
    }
    pmovmskb(eax, xmm2);
}

// Unsigned arithmetic modulo 2^16: units below the range wrap around to great differences. The words that are
// zero afterwards are the members; packing keeps zero and nothing else zero, as it saturates.
void Unit_Code::emitRangeMembers(RE_Unit_Ranges::Range range) {
    movdqa(xmm3, ptr[rip + words(range.low)]);
    movdqa(xmm4, ptr[rip + words(static_cast<char16_t>(range.high - range.low))]);
    psubw(xmm0, xmm3);
    psubw(xmm1, xmm3);
    // Distances up to the size of the range saturate to zero.
    psubusw(xmm0, xmm4);
    psubusw(xmm1, xmm4);
    packsswb(xmm0, xmm1);
    pcmpeqb(xmm0, xmm2);
    pmovmskb(eax, xmm0);
}

void Unit_Code::emitRangeMembersOfHalf(const Reg64& from, const RE_Unit_Set& range) {
    const RE_Unit_Ranges::Range only = RE_Unit_Ranges(range).list[0];
    movdqu(xmm0, ptr[from]);
    pxor(xmm1, xmm1);
    psubw(xmm0, ptr[rip + words(only.low)]);
    psubusw(xmm0, ptr[rip + words(static_cast<char16_t>(only.high - only.low))]);
    pcmpeqw(xmm0, xmm1);
    pmovmskb(eax, xmm0);
}

void Unit_Code::emitEqualUnits(const Xbyak::RegExp& from, char16_t unit, const Xbyak::Xmm& result) {
    movdqa(xmm4, ptr[rip + words(unit)]);
    emitEqualTo(from, result);
}

// Copies the unit to all eight words of xmm4.
void Unit_Code::emitEqualUnits(const Xbyak::RegExp& from, const Xbyak::Reg32& unit,
                               const Xbyak::Xmm& result) {
    movd(xmm4, unit);
    pshuflw(xmm4, xmm4, 0);
    pshufd(xmm4, xmm4, 0);
    emitEqualTo(from, result);
}

// Compares sixteen units with those in xmm4. Clobbers xmm5.
void Unit_Code::emitEqualTo(const Xbyak::RegExp& from, const Xbyak::Xmm& result) {
    movdqu(result, ptr[from]);
    movdqu(xmm5, ptr[from + 16]);
    pcmpeqw(result, xmm4);
    pcmpeqw(xmm5, xmm4);
    packsswb(result, xmm5);
}

// Lowest byte first, as the processor reads them.
Label& Unit_Code::words(char16_t unit) {
    Bytes bytes;
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        bytes[i] = static_cast<std::uint8_t>(unit & 0xFF);
        bytes[i + 1] = static_cast<std::uint8_t>(unit >> 8);
    }
    return constant(bytes);
}

// The row of four low bits holds one bit for each value of the next three: 16 rows of 8 are the 128 units of
// the table.
Label& Unit_Code::rowsOf(const RE_Unit_Set& units) {
    Bytes rows{};
    for (std::size_t unit = 0; unit < tableUnits; ++unit) {
        if (units.contains(static_cast<char16_t>(unit))) {
            rows[unit % 16] = static_cast<std::uint8_t>(rows[unit % 16] | 1U << unit / 16);
        }
    }
    return constant(rows);
}

// The bit that the next three bits select. Zero for the upper half of the bytes.
Label& Unit_Code::rowBits() {
    Bytes bits{};
    for (std::size_t row = 0; row < 8; ++row) {
        bits[row] = static_cast<std::uint8_t>(1U << row);
    }
    return constant(bits);
}

namespace {

/// The bytes with which a prefix may have at some place, when they are the same for all prefixes and side by
/// side: then the place is tested by arithmetic, without shuffles.
struct Byte_Range {
    Byte_Range(const RE_Prefix_Scan& scan, std::size_t place) {
        const std::uint32_t all = prefixesOf(scan);
        for (std::uint32_t byte = 0; byte <= 0xFF; ++byte) {
            const std::uint32_t prefixes = prefixesWith(scan, place, byte);
            if (prefixes != 0) {
                isWhole = isWhole && prefixes == all && (isEmpty || byte == high + std::uint32_t{1});
                low = isEmpty ? static_cast<char16_t>(byte) : low;
                high = static_cast<char16_t>(byte);
                isEmpty = false;
            }
        }
        isWhole = isWhole && !isEmpty;
    }
    /// Whether it is one unit. With saturation 0xFF is the byte of all greater units as well, so it is not.
    bool isOne() const { return isWhole && low == high && high < 0xFF; }

    bool isWhole = true;
    char16_t low = 0;
    char16_t high = 0;

private:
    /// One bit for each prefix that exists. A prefix that allows nothing at one place still counts, by its
    /// other places.
    static std::uint32_t prefixesOf(const RE_Prefix_Scan& scan) {
        std::uint32_t all = 0;
        for (std::size_t place = 0; place < scan.depth; ++place) {
            for (std::uint32_t byte = 0; byte <= 0xFF; ++byte) {
                all |= prefixesWith(scan, place, byte);
            }
        }
        return all;
    }
    static std::uint32_t prefixesWith(const RE_Prefix_Scan& scan, std::size_t place, std::uint32_t unit) {
        return scan.low[place][unit % 16] & std::uint32_t{scan.high[place][unit / 16]};
    }

    bool isEmpty = true;
};

}  // namespace

// After each place xmm2 keeps, for each position, the bits of the prefixes that are still possible. Where a
// place allows the same for all prefixes its test gives all bits or none.
void Unit_Code::emitPrefixes(const Reg64& from, const RE_Prefix_Scan& scan) {
    for (std::size_t place = 0; place < scan.depth; ++place) {
        const int distance = static_cast<int>(scan.distance[place] * sizeof(char16_t));
        movdqu(xmm0, ptr[from + distance]);
        movdqu(xmm1, ptr[from + distance + 16]);
        const Byte_Range bytes(scan, place);
        // A single unit is compared before packing: cheaper, and exact.
        if (scan.saturates && bytes.isOne()) {
            movdqa(xmm3, ptr[rip + words(bytes.low)]);
            pcmpeqw(xmm0, xmm3);
            pcmpeqw(xmm1, xmm3);
            packsswb(xmm0, xmm1);
        } else {
            emitBytes(scan.saturates);
            emitPrefixBytes(scan, place);
        }
        place == 0 ? movdqa(xmm2, xmm0) : pand(xmm2, xmm0);
    }
    pxor(xmm0, xmm0);
    // No bit left: no prefix is possible there.
    pcmpeqb(xmm2, xmm0);
    pmovmskb(eax, xmm2);
    xor_(eax, 0xFFFF);
}

// Packs the sixteen units in xmm0 and xmm1 to bytes in xmm0. `packuswb` saturates signed words, so both ways
// cut units down to 0xFF first: by the least of the two, or by their low byte, as the prefixes were prepared.
void Unit_Code::emitBytes(bool saturate) {
    movdqa(xmm3, ptr[rip + words(0x00FF)]);
    if (saturate) {
        pminuw(xmm0, xmm3);
        pminuw(xmm1, xmm3);
    } else {
        pand(xmm0, xmm3);
        pand(xmm1, xmm3);
    }
    packuswb(xmm0, xmm1);
}

// Leaves in xmm0 the bits of the prefixes that allow a byte: those in the row of its low and in that of its
// high bits.
void Unit_Code::emitPrefixBytes(const RE_Prefix_Scan& scan, std::size_t place) {
    const Byte_Range bytes(scan, place);
    if (bytes.isWhole) {
        const auto twice = [](char16_t unit) { return static_cast<char16_t>(unit | unit << 8); };
        // The same technique as for ranges of units, with bytes.
        psubb(xmm0, ptr[rip + words(twice(bytes.low))]);
        pxor(xmm1, xmm1);
        psubusb(xmm0, ptr[rip + words(twice(static_cast<char16_t>(bytes.high - bytes.low)))]);
        pcmpeqb(xmm0, xmm1);
        return;
    }
    movdqa(xmm3, ptr[rip + words(0x0F0F)]);
    movdqa(xmm1, xmm0);
    psrlw(xmm1, 4);
    pand(xmm1, xmm3);
    pand(xmm0, xmm3);
    movdqa(xmm4, ptr[rip + prefixTable(scan.low[place])]);
    movdqa(xmm5, ptr[rip + prefixTable(scan.high[place])]);
    pshufb(xmm4, xmm0);
    pshufb(xmm5, xmm1);
    pand(xmm4, xmm5);
    movdqa(xmm0, xmm4);
}

Label& Unit_Code::prefixTable(const std::uint8_t (&table)[16]) {
    Bytes bytes;
    std::copy(std::begin(table), std::end(table), bytes.begin());
    return constant(bytes);
}

namespace {

// Operands of the processor's comparisons, and of its three-operand logic: the truth table of `a & b & c`.
constexpr std::uint8_t isAtMost = 2;
constexpr std::uint8_t isNot = 4;
constexpr std::uint8_t andThree = 0x80;

}  // namespace

// The masked forms keep to vector registers 16 and up and to mask registers: none of them leaves upper halves
// that would have to be cleared before code without such vectors runs on.
void Unit_Code::emitMask(std::uint32_t most) {
    mov(ecx, most * static_cast<std::uint32_t>(sizeof(char16_t)));
    cmp(rax, rcx);
    cmovb(ecx, eax);
    shr(ecx, 1);
    mov(eax, 0xFFFFFFFF);
    bzhi(eax, eax, ecx);
    kmovd(k1, eax);
}

// The kinds are those of `emitMembers`. Units that are masked load as zero and would be members of many sets:
// it is the mask of the comparison that keeps them out.
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
            // The mask narrows from unit to unit: what is left differs from all of them.
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

// A masked comparison gives zero bits for the units that are masked.
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

// Units are cut to bytes as in `emitBytes`, by the conversion that saturates or by the one that does not.
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
