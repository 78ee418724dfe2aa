#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/unit_code.h"

#include "regexp/program/instruction.h"
#include "regexp/seek/kernels.h"
#include "regexp/units/unit_set.h"

#include <algorithm>
#include <bit>
#include <iterator>

namespace corvane_machine {

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

void Unit_Code::loadUnit(Label& target) {
    cmp(p, end);
    jae(target, T_NEAR);
    movzx(eax, word[p]);
}

namespace {

constexpr std::uint32_t wordBits = 64;

/// The members of a set whose units lie within one word's worth.
struct Few_Units {
    explicit Few_Units(const RE_Unit_Set& units) {
        if (units.holdsAnyFrom(2 * wordBits)) {
            return;
        }
        const std::uint64_t words[2] = {units.bits(0), units.bits(1)};
        low = words[0] != 0 ? static_cast<std::uint32_t>(std::countr_zero(words[0]))
                            : wordBits + static_cast<std::uint32_t>(std::countr_zero(words[1]));
        const std::uint32_t shift = low % wordBits;
        fit = low >= wordBits || words[1] >> shift == 0;
        bits = low >= wordBits ? words[1] >> shift
                               : words[0] >> shift | (shift == 0 ? 0 : words[1] << (wordBits - shift));
    }

    bool fit = false;
    std::uint32_t low = 0;
    std::uint64_t bits = 0;  // of the units from `low` on
};

}  // namespace

void Unit_Code::loadTable(const RE_Unit_Set& units) {
    if (RE_Unit_Ranges(units).count == 1 || RE_Units_Outside(units).count <= RE_Units_Outside::few) {
        return;
    }
    const Few_Units few(units);
    mov(other, few.fit ? few.bits : reinterpret_cast<std::uint64_t>(units.table()));
}

void Unit_Code::unlessIn(const RE_Unit_Set& units, Label& target, bool wanted, bool tableIsLoaded) {
    const RE_Unit_Ranges ranges(units);
    if (ranges.count == 1) {
        const auto low = static_cast<std::uint32_t>(ranges.list[0].low);
        const auto high = static_cast<std::uint32_t>(ranges.list[0].high);
        if (low == high) {
            cmp(eax, low);
            wanted ? jne(target, T_NEAR) : je(target, T_NEAR);
            return;
        }
        lea(ebp, ptr[rax - static_cast<int>(low)]);
        cmp(ebp, high - low);
        wanted ? ja(target, T_NEAR) : jbe(target, T_NEAR);
        return;
    }
    Label& holds = fresh();
    Label& fails = fresh();
    if (const RE_Units_Outside outside(units); outside.count <= RE_Units_Outside::few) {
        for (std::size_t i = 0; i < outside.count; ++i) {
            cmp(eax, static_cast<std::uint32_t>(outside.list[i]));
            je(wanted ? target : fails, T_NEAR);
        }
        if (!wanted) {
            jmp(target, T_NEAR);
        }
        L(fails);
        return;
    }
    if (const Few_Units few(units); few.fit) {
        lea(ebp, ptr[rax - static_cast<int>(few.low)]);
        cmp(ebp, wordBits);
        jae(wanted ? target : fails, T_NEAR);
        if (!tableIsLoaded) {
            loadTable(units);
        }
        bt(other, spare);
        wanted ? jnc(target, T_NEAR) : jc(target, T_NEAR);
        L(fails);
        return;
    }
    // Most units that such a set is asked about are near the first ones.
    if (const RE_Unit_Ranges near(units, tableUnits); near.count == 1) {
        lea(ebp, ptr[rax - static_cast<int>(near.list[0].low)]);
        cmp(ebp, static_cast<std::uint32_t>(near.list[0].high - near.list[0].low));
        jbe(wanted ? holds : target, T_NEAR);
        cmp(eax, static_cast<std::uint32_t>(tableUnits));
        jb(wanted ? target : holds, T_NEAR);
    }
    if (!tableIsLoaded) {
        loadTable(units);
    }
    mov(spare, rax);
    shr(spare, 6);
    mov(spare, qword[other + spare * 8]);
    bt(spare, rax);
    wanted ? jnc(target, T_NEAR) : jc(target, T_NEAR);
    L(holds);
}

void Unit_Code::unlessTaken(const RE_Instruction& in, Label& target) {
    switch (in.operation) {
        case RE_Operation::unit:
            cmp(eax, std::uint32_t{in.unit});
            jne(target, T_NEAR);
            break;
        case RE_Operation::eitherUnit: {
            Label& holds = fresh();
            cmp(eax, std::uint32_t{in.unit});
            je(holds, T_NEAR);
            cmp(eax, in.most);
            jne(target, T_NEAR);
            L(holds);
            break;
        }
        case RE_Operation::range:
            lea(ecx, ptr[rax - static_cast<int>(in.least)]);
            cmp(ecx, in.most - in.least);
            ja(target, T_NEAR);
            break;
        case RE_Operation::notLineFeed:
            cmp(eax, std::uint32_t{u'\n'});
            je(target, T_NEAR);
            break;
        default:
            unlessIn(*in.units, target);
    }
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
    // Units from 0x80 on become bytes from 0x80 on.
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

// The units that are one of these are gathered in xmm2.
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

void Unit_Code::emitRangeMembers(RE_Unit_Ranges::Range range) {
    movdqa(xmm3, ptr[rip + words(range.low)]);
    movdqa(xmm4, ptr[rip + words(static_cast<char16_t>(range.high - range.low))]);
    psubw(xmm0, xmm3);
    psubw(xmm1, xmm3);
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

void Unit_Code::emitEqualUnits(const Xbyak::RegExp& from, const Xbyak::Reg32& unit,
                               const Xbyak::Xmm& result) {
    movd(xmm4, unit);
    pshuflw(xmm4, xmm4, 0);
    pshufd(xmm4, xmm4, 0);
    emitEqualTo(from, result);
}

// The units to compare with are in xmm4.
void Unit_Code::emitEqualTo(const Xbyak::RegExp& from, const Xbyak::Xmm& result) {
    movdqu(result, ptr[from]);
    movdqu(xmm5, ptr[from + 16]);
    pcmpeqw(result, xmm4);
    pcmpeqw(xmm5, xmm4);
    packsswb(result, xmm5);
}

Label& Unit_Code::words(char16_t unit) {
    Bytes bytes;
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        bytes[i] = static_cast<std::uint8_t>(unit & 0xFF);
        bytes[i + 1] = static_cast<std::uint8_t>(unit >> 8);
    }
    return constant(bytes);
}

// By low four bits of a unit of the table: one bit for each value of the next three.
Label& Unit_Code::rowsOf(const RE_Unit_Set& units) {
    Bytes rows{};
    for (std::size_t unit = 0; unit < tableUnits; ++unit) {
        if (units.contains(static_cast<char16_t>(unit))) {
            rows[unit % 16] = static_cast<std::uint8_t>(rows[unit % 16] | 1U << unit / 16);
        }
    }
    return constant(rows);
}

Label& Unit_Code::rowBits() {
    Bytes bits{};
    for (std::size_t row = 0; row < 8; ++row) {
        bits[row] = static_cast<std::uint8_t>(1U << row);
    }
    return constant(bits);
}

}  // namespace corvane_machine

#endif
