#pragma once

#include "regexp/machine/machine_code.h"
#include "regexp/search_registers.h"
#include "regexp/seek/literal_search.h"
#include "regexp/unit_set.h"

#include <xbyak/xbyak.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

struct RE_Instruction;
struct RE_Prefix_Scan;

struct RE_Unit_Ranges {
    struct Range {
        char16_t low;
        char16_t high;
    };
    static constexpr std::size_t most = 1;

    /// Of the units before `end`.
    explicit RE_Unit_Ranges(const RE_Unit_Set& set, std::size_t end = RE_Unit_Set::unitCount);

    Range list[most];
    std::size_t count = 0;  ///< more than `most` when there are more
};

/// The units that a set leaves out, as far as they are few; or, with `outside` false, those that it holds.
struct RE_Units_Outside {
    static constexpr std::size_t most = 4;
    static constexpr std::size_t few = 2;  ///< are compared one after another

    explicit RE_Units_Outside(const RE_Unit_Set& set, bool outside = true);

    char16_t list[most];
    std::size_t count = 0;  ///< more than `most` when there are more
};

namespace corvane_machine {

using Xbyak::Label;
using Xbyak::Reg64;

static_assert(std::is_standard_layout_v<RE_Search_Registers>);

class Code_Writer : protected Xbyak::CodeGenerator {
protected:
    explicit Code_Writer(std::size_t mostBytes) : Xbyak::CodeGenerator(mostBytes, Xbyak::DontSetProtectRWE) {}

    // What is asked for less often stays where it is. `other`, `stop`, `spare` and rax serve one instruction.
    const Reg64 state = rdi;
    const Reg64 p = rsi;
    const Reg64 end = rdx;
    const Reg64 left = r8;  ///< steps
    const Reg64 begin = r9;
    const Reg64 start = r10;
    const Reg64 runBegin = r11;
    const Reg64 other = rcx;
    const Reg64 stop = rbx;
    const Reg64 spare = rbp;

    /// A member of the search's registers, by its offset.
    Xbyak::Address at(std::size_t offset) { return qword[state + static_cast<int>(offset)]; }

    Label& fresh();
    /// Where to return from, for the reason given. Resumed at `resume`.
    Label& exitFor(RE_Machine_Exit reason, const RE_Instruction* instruction = nullptr,
                   Label* resume = nullptr);
    void emitEntry();
    /// An entry with the place to begin at in `p`.
    void emitBegin();
    void emitExits();

    using Bytes = std::array<std::uint8_t, 16>;
    /// Where these bytes stand, behind the code.
    Label& constant(const Bytes& bytes);
    void emitConstants();
    /// What only served writing goes once the code is complete.
    void forgetLabels();

private:
    void emitEnds(RE_Machine_Exit reason);
    void emitReturn(RE_Machine_Exit reason);
    void emitLeave();

    struct Exit {
        Label label;
        RE_Machine_Exit reason;
        const RE_Instruction* instruction;
        Label* resume;
    };
    struct Constant {
        Bytes bytes;
        Label* label;
    };

    std::vector<std::unique_ptr<Label>> labels;
    std::vector<std::unique_ptr<Exit>> exits;
    std::vector<Constant> constants;
};

class Unit_Code : protected Code_Writer {
protected:
    using Code_Writer::Code_Writer;

    static constexpr std::uint32_t vectorUnits = 16;
    const RE_Machine_Vectors vectors = widestVectors();
    const bool scansVectors = vectors >= RE_Machine_Vectors::narrow;
    const bool scansWideVectors = vectors >= RE_Machine_Vectors::wide;
    const bool masksVectors = vectors >= RE_Machine_Vectors::masked;

    /// How a set is told from a vector of units.
    enum class Kind {
        range,
        allBut,     ///< all but a few
        noOthers,   ///< units of the table only
        allOthers,  ///< some of the table, and all behind it
        mixed       ///< of a vector only those of the table are told
    };
    static Kind kindOf(const RE_Unit_Set& units);

    /// Goes to `target` unless `p` is before the end; otherwise its unit is in eax.
    void loadUnit(Label& target);
    /// Goes to `target` unless the unit in eax is in the set; or, with `wanted` false, if it is.
    void unlessIn(const RE_Unit_Set& units, Label& target, bool wanted = true, bool tableIsLoaded = false);
    /// For many questions in a row. The address stays in `other`.
    void loadTable(const RE_Unit_Set& units);
    /// Goes to `target` unless the test of the instruction takes the unit in eax.
    void unlessTaken(const RE_Instruction& in, Label& target);
    /// Puts into eax one bit for each of the units from `from` on that is in the set; of mixed sets only
    /// those of the table, and into ecx all behind the table, unless all are told. Goes to `tooNear` where
    /// the subject ends before.
    void emitMembersAt(const Reg64& from, const RE_Unit_Set& units, Label& tooNear);
    /// The same for units that are readable.
    void emitMembers(const Reg64& from, const RE_Unit_Set& units);
    /// The same of half as many units and a set that is one range, by two bits a unit.
    void emitRangeMembersOfHalf(const Reg64& from, const RE_Unit_Set& range);
    /// One bit for each of the units from `from` on that is this one.
    void emitEqualUnits(const Xbyak::RegExp& from, char16_t unit, const Xbyak::Xmm& result);
    /// Puts into k1 and eax a bit for each of the units that rax holds the bytes of, up to so many.
    void emitMask(std::uint32_t most);
    /// As `emitMembers`, of the units in k1.
    void emitMaskedMembers(const Reg64& from, const RE_Unit_Set& units);
    void emitMaskedRange(const Reg64& from, RE_Unit_Ranges::Range range);
    void emitMaskedPrefixes(const Reg64& from, const RE_Prefix_Scan& scan);
    /// Puts into eax one bit for each of the positions from `from` on at which a prefix may stand.
    void emitPrefixes(const Reg64& from, const RE_Prefix_Scan& scan);
    void emitBytes(bool saturate);
    void emitPrefixBytes(const RE_Prefix_Scan& scan, std::size_t place);
    Label& prefixTable(const std::uint8_t (&table)[16]);
    /// Goes to `target` unless the text stands at `from`, where as many units are readable.
    /// `offset` units behind `from` it is to stand.
    void unlessText(const Reg64& from, const RE_Literal& literal, Label& target, std::size_t offset = 0);
    static constexpr std::size_t longestText = 256;
    /// Whether each unit of a literal that ignores case is told by two comparisons at most.
    static bool hasFewForms(const RE_Literal& literal);

    /// The same of the unit in a register.
    void emitEqualUnits(const Xbyak::RegExp& from, const Xbyak::Reg32& unit, const Xbyak::Xmm& result);

    struct Forms {
        char16_t list[2];
        std::size_t count = 0;
    };
    static Forms formsOf(char16_t lower);

    /// Where sixteen bytes of this unit stand.
    Label& words(char16_t unit);

private:
    static constexpr std::size_t tableUnits = 128;

    static RE_Machine_Vectors widestVectors();
    void emitEqualTo(const Xbyak::RegExp& from, const Xbyak::Xmm& result);
    void emitRangeMembers(RE_Unit_Ranges::Range range);
    void emitEqualToAny(const RE_Units_Outside& sought);
    Label& rowsOf(const RE_Unit_Set& units);
    Label& rowBits();
};

}  // namespace corvane_machine
