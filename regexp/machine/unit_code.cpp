// Tests of single units and of texts, one comparison after another. `vector_code.cpp` tests sixteen units at
// a time.
//
// A set is tested by the cheapest means that can decide it: a comparison or two where it is a range or leaves
// out a few units; a word of bits where all members lie within 64 units of each other; otherwise the table of
// the set, with a shortcut for its first units. The forms agree on every unit; they differ in time only.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/unit_code.h"

#include "regexp/graph/instruction.h"
#include "regexp/units/unit_set.h"

#include <algorithm>
#include <bit>
#include <iterator>

namespace {

/// The first unit at or after `unit` that is in the set; with `wanted` false, the first that is not. `end`
/// where there is none before it. Looks at 64 units at a time, and once at all those that are alike up to the last one.
std::size_t nextUnit(const RE_Unit_Set& set, std::size_t unit, bool wanted,
                     std::size_t end = RE_Unit_Set::unitCount) {
    while (unit < end) {
        const std::uint64_t bits = wanted ? set.bits(unit / 64) : ~set.bits(unit / 64);
        const std::uint64_t after = bits >> (unit % 64);
        if (after != 0) {
            return std::min(unit + static_cast<std::size_t>(std::countr_zero(after)), end);
        }
        if (unit / 64 >= set.variedBlocks()) {
            return end;
        }
        unit = (unit / 64 + 1) * 64;
    }
    return end;
}

}  // namespace

// Stops counting one past `most`: the caller only wants to know that there are too many.
RE_Unit_Ranges::RE_Unit_Ranges(const RE_Unit_Set& set, std::size_t end) {
    for (std::size_t low = nextUnit(set, 0, true, end); low < end && count <= most; ++count) {
        const std::size_t after = nextUnit(set, low, false, end);
        if (count < most) {
            list[count] = {static_cast<char16_t>(low), static_cast<char16_t>(after - 1)};
        }
        low = nextUnit(set, after, true, end);
    }
}

RE_Units_Outside::RE_Units_Outside(const RE_Unit_Set& set, bool outside) {
    for (std::size_t unit = nextUnit(set, 0, !outside); unit < RE_Unit_Set::unitCount && count <= most;
         ++count) {
        if (count < most) {
            list[count] = static_cast<char16_t>(unit);
        }
        unit = nextUnit(set, unit + 1, !outside);
    }
}

namespace corvane_machine {

void Unit_Code::loadUnit(Label& target) {
    cmp(p, end);
    jae(target, T_NEAR);
    movzx(eax, word[p]);
}

namespace {

constexpr std::uint32_t wordBits = 64;

/// The members of a set whose units lie within 64 of each other, as the bits of one word. Found among the
/// units below 128 only, where nearly all such sets lie. `fit` is false for all others.
struct Few_Units {
    explicit Few_Units(const RE_Unit_Set& units) {
        if (units.holdsAnyFrom(2 * wordBits)) {
            return;
        }
        const std::uint64_t words[2] = {units.bits(0), units.bits(1)};
        // From the lowest member on, over the border between the two words.
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

// Ranges and small complements need no table; of few units the bits themselves are loaded.
void Unit_Code::loadTable(const RE_Unit_Set& units) {
    if (RE_Unit_Ranges(units).count == 1 || RE_Units_Outside(units).count <= RE_Units_Outside::few) {
        return;
    }
    const Few_Units few(units);
    // A pattern's sets live as long as its code: their tables may be referred to by address.
    mov(other, few.fit ? few.bits : reinterpret_cast<std::uint64_t>(units.table()));
}

// `lea` into ebp clears the upper half of rbp, so that `spare` is a 64-bit index afterwards. A unit below
// `low` becomes a great number by the subtraction, and one comparison rejects both sides of a range.
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
    // A set that leaves out no unit at all needs no test: the loop writes nothing then.
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
        // `spare` is the distance from the lowest member, known to be below 64.
        bt(other, spare);
        wanted ? jnc(target, T_NEAR) : jc(target, T_NEAR);
        L(fails);
        return;
    }
    // Most units that such a set is tested for are near its first range. A miss there does not decide about
    // the units above the table, which the bits below decide.
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
    // Units beyond the words of the table are alike.
    if (const std::size_t blocks = units.variedBlocks(); blocks < RE_Unit_Set::unitCount / 64) {
        const bool holdsRest = units.contains(RE_Unit_Set::unitCount - 1);
        cmp(eax, static_cast<std::uint32_t>(blocks * 64));
        jae(holdsRest != wanted ? target : holds, T_NEAR);
    }
    // A bit index in a register counts modulo 64: eax serves as it is.
    mov(spare, rax);
    shr(spare, 6);
    mov(spare, qword[other + spare * 8]);
    bt(spare, rax);
    wanted ? jnc(target, T_NEAR) : jc(target, T_NEAR);
    L(holds);
}

// The tests of an instruction carry their operands; all but sets are decided without a table. A range is one
// comparison, by the distance from its low end.
void Unit_Code::unlessTaken(const RE_Instruction& in, Label& target) {
    if (in.operation == RE_Operation::unit) {
        cmp(eax, std::uint32_t{in.unit});
        jne(target, T_NEAR);
    } else if (in.operation == RE_Operation::eitherUnit) {
        Label& holds = fresh();
        cmp(eax, std::uint32_t{in.unit});
        je(holds, T_NEAR);
        cmp(eax, in.most);
        jne(target, T_NEAR);
        L(holds);
    } else if (in.operation == RE_Operation::range) {
        lea(ecx, ptr[rax - static_cast<int>(in.least)]);
        cmp(ecx, in.most - in.least);
        ja(target, T_NEAR);
    } else if (in.operation == RE_Operation::notLineFeed) {
        cmp(eax, std::uint32_t{u'\n'});
        je(target, T_NEAR);
    } else {
        // A set, or the first units of many texts.
        unlessIn(*in.units, target);
    }
}

// Counts all forms, so that the caller sees when there are more than the list can hold.
Unit_Code::Forms Unit_Code::formsOf(char16_t lower) {
    Forms forms{};
    RE_Case_Table::get().forEachForm(lower, [&](char16_t form) {
        if (forms.count < std::size(forms.list)) {
            forms.list[forms.count] = form;
        }
        ++forms.count;
    });
    return forms;
}

// Three forms are rare (the Kelvin sign beside `K` and `k`): the match loop compares texts with such units.
bool Unit_Code::hasFewForms(const RE_Literal& literal) {
    return std::all_of(literal.text, literal.text + literal.length, [](char16_t unit) {
        const std::size_t count = formsOf(unit).count;
        return count > 0 && count <= std::size(Forms{}.list);
    });
}

// Two units at a time where case counts. Immediate operands of sixteen bits are given sign-extended, as the
// assembler would refuse greater ones. Reads no unit outside of the text, whose units the caller knows to be
// readable.
void Unit_Code::unlessText(const Reg64& from, const RE_Literal& literal, Label& target, std::size_t offset) {
    const auto immediate = [](char16_t unit) {
        return static_cast<std::uint32_t>(static_cast<std::int16_t>(unit));
    };
    const auto place = [&](std::size_t i) {
        return from + static_cast<int>((offset + i) * sizeof(char16_t));
    };
    for (std::size_t i = 0; i < literal.length; ++i) {
        const Forms forms = literal.ignoreCase ? formsOf(literal.text[i]) : Forms{{literal.text[i]}, 1};
        if (forms.count == 2) {
            Label& holds = fresh();
            cmp(word[place(i)], immediate(forms.list[0]));
            je(holds, T_NEAR);
            cmp(word[place(i)], immediate(forms.list[1]));
            jne(target, T_NEAR);
            L(holds);
        } else if (!literal.ignoreCase && i + 1 < literal.length) {
            cmp(dword[place(i)], literal.text[i] | static_cast<std::uint32_t>(literal.text[i + 1]) << 16);
            jne(target, T_NEAR);
            ++i;
        } else {
            cmp(word[place(i)], immediate(forms.list[0]));
            jne(target, T_NEAR);
        }
    }
}

}  // namespace corvane_machine

#endif
