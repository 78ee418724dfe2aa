// The two lower layers of the code generator: what all code is written with, and the tests of units.
//
// The generator is a chain of classes, each of which adds a layer and calls those below it only:
//
//     Code_Writer    registers, labels, constants, returns                  (assembler.cpp)
//     Unit_Code      is a unit in a set; which of sixteen are; is a text    (unit_code.cpp, vector_code.cpp)
//     Program_Code   the instructions of a program                          (program_code.h)
//     Start_Code     the walk from start to start                           (program_code.h)
//
// Everything here exists while code is being made. Nothing but the finished bytes is used by searches.
//
// Conventions of the functions named `emit...` and `unless...`: they append instructions; a `Label&` among
// their arguments is where the appended code jumps to, otherwise it falls through. `rax` and the four scratch
// registers are clobbered unless a comment says otherwise. Offsets into text are in bytes in the processor's
// instructions: units times two.
#pragma once

#include "regexp/base/tuning.h"
#include "regexp/machine/machine_code.h"
#include "regexp/seek/literal_search.h"
#include "regexp/state/search_registers.h"
#include "regexp/units/unit_set.h"

#include <xbyak/xbyak.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>
#include <vector>

struct RE_Instruction;
struct RE_Prefix_Scan;

/// The ranges of neighbouring units that a set consists of, as long as a comparison or two can tell them
/// apart. Sets of more ranges are tested by tables.
struct RE_Unit_Ranges {
    struct Range {
        char16_t low;
        char16_t high;
    };
    static constexpr std::size_t most = 1;

    /// Units at or above `end` do not count.
    explicit RE_Unit_Ranges(const RE_Unit_Set& set, std::size_t end = RE_Unit_Set::unitCount);

    Range list[most];
    std::size_t count = 0;  ///< more than `most` when there are more
};

/// The units that a set leaves out, when they are few; with `outside` false, the units that it holds.
struct RE_Units_Outside {
    static constexpr std::size_t most = 4;
    static constexpr std::size_t few = 2;  ///< so many are compared one after another with a single unit

    explicit RE_Units_Outside(const RE_Unit_Set& set, bool outside = true);

    char16_t list[most];
    std::size_t count = 0;  ///< more than `most` when there are more
};

namespace corvane_machine {

using Xbyak::Label;
using Xbyak::Reg64;

// The code knows the registers of a search by `offsetof` alone.
static_assert(std::is_standard_layout_v<RE_Search_Registers>);

/// The frame that all code shares: the registers that an attempt lives in, entries and returns, labels and
/// constants.
///
/// `DontSetProtectRWE`: the buffer is writable and not executable until the finished code is sealed.
class Code_Writer : protected Xbyak::CodeGenerator {
protected:
    explicit Code_Writer(std::span<std::byte> buffer) : Xbyak::CodeGenerator(buffer.size(), buffer.data()) {}

    // The state arrives in rdi and the place to begin at in rsi, as the System V convention passes the first
    // two arguments. What attempts use all the time has a register; the rest stays in memory, at an offset
    // from `state`.
    //
    // `other`, `stop`, `spare` and rax are scratch: no value in them survives an instruction of the program.
    // Traps: `other` is also named ecx or rcx by the vector code, which counts bits in it, and `spare` is
    // also named ebp by the tests of units. Of the registers here rbx and rbp belong to the caller, so
    // entries push them.
    const Reg64 state = rdi;
    const Reg64 p = rsi;
    const Reg64 end = rdx;
    const Reg64 left = r8;  ///< steps up to the next checkpoint
    const Reg64 begin = r9;
    const Reg64 start = r10;
    const Reg64 runBegin = r11;
    const Reg64 other = rcx;
    const Reg64 stop = rbx;
    const Reg64 spare = rbp;

    /// A member of the search's registers, by its offset.
    Xbyak::Address at(std::size_t offset) { return qword[state + static_cast<int>(offset)]; }

    /// A label that lives as long as the writer, for places that are written later than the jumps to them.
    Label& fresh();
    /// A place that returns for `reason`. Where the caller has something to answer, the code continues at
    /// `resume`.
    Label& exitFor(RE_Machine_Exit reason, const RE_Instruction* instruction = nullptr,
                   Label* resume = nullptr);
    /// The entry for code that is run again: loads the registers and jumps to where it left off.
    void emitEntry();
    /// The entry for a new search, with the place to begin at in `p`. Falls through into what is written
    /// next.
    void emitBegin();
    /// Writes the returns at the labels that `exitFor` has handed out.
    void emitExits();

    using Bytes = std::array<std::uint8_t, 16>;
    /// The place of these sixteen bytes after the code. Equal constants share one.
    Label& constant(const Bytes& bytes);
    void emitConstants();
    /// Where tables of addresses begin, in bytes from the beginning of the code.
    std::vector<std::size_t> tables;

private:
    void emitEnds(RE_Machine_Exit reason);
    void emitReturn(RE_Machine_Exit reason);
    void emitLeave();

    /// A return that `exitFor` has promised. Returns are written after all else: the likely path has no jumps.
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

/// Tests of units: one unit against a set, sixteen at once, and whole texts.
class Unit_Code : protected Code_Writer {
protected:
    Unit_Code(std::span<std::byte> buffer, RE_Machine_Vectors widest)
        : Code_Writer(buffer), vectors(vectorsWithin(widest)) {}

    /// Scans take sixteen units at a time, in two vectors of eight or one of sixteen: the answers are sixteen
    /// bits.
    static constexpr std::uint32_t vectorUnits = 16;
    const RE_Machine_Vectors vectors;
    const bool scansVectors = vectors >= RE_Machine_Vectors::narrow;
    const bool scansWideVectors = vectors >= RE_Machine_Vectors::wide;
    const bool masksVectors = vectors >= RE_Machine_Vectors::masked;

    /// How sixteen units are tested for membership. The table, by `pshufb`, knows the units below
    /// `tableUnits`.
    enum class Kind {
        range,
        allBut,     ///< all but a few
        noOthers,   ///< some units of the table
        allOthers,  ///< some units of the table, and every unit above it
        mixed       ///< units above the table are undecided: the caller has to look at each
    };
    static Kind kindOf(const RE_Unit_Set& units);

    /// Jumps to `target` where `p` is at the end; otherwise its unit is in eax.
    void loadUnit(Label& target);
    /// Jumps to `target` unless the unit in eax is in the set; with `wanted` false, if it is. eax is kept.
    /// With `tableIsLoaded` the caller has called `loadTable` for this set and has kept `other`.
    void unlessIn(const RE_Unit_Set& units, Label& target, bool wanted = true, bool tableIsLoaded = false);
    /// Loads what `unlessIn` needs into `other`, so that a loop over units loads it once.
    void loadTable(const RE_Unit_Set& units);
    /// Jumps to `target` unless the test of the instruction takes the unit in eax. Keeps eax; `other` may be
    /// lost.
    void unlessTaken(const RE_Instruction& in, Label& target);
    /// Puts into eax one bit for each of the sixteen units from `from` on that is in the set. Of mixed sets
    /// only units of the table get bits, and ecx has one for each unit above the table. Jumps to `tooNear`
    /// where fewer units are left.
    void emitMembersAt(const Reg64& from, const RE_Unit_Set& units, Label& tooNear);
    /// The same where sixteen units are known to be readable.
    void emitMembers(const Reg64& from, const RE_Unit_Set& units);
    /// The same for eight units and a set that is one range. Two bits a unit: eight are not worth packing.
    void emitRangeMembersOfHalf(const Reg64& from, const RE_Unit_Set& range);
    /// Puts into `result` a byte of ones for each of the sixteen units from `from` on that is this one, else
    /// zero.
    void emitEqualUnits(const Xbyak::RegExp& from, char16_t unit, const Xbyak::Xmm& result);
    /// The same for a unit that is known at run time only.
    void emitEqualUnits(const Xbyak::RegExp& from, const Xbyak::Reg32& unit, const Xbyak::Xmm& result);
    /// Puts into k1 and eax one bit for each unit that is left, at most `most` of them. rax holds how many
    /// bytes are left.
    void emitMask(std::uint32_t most);
    /// As `emitMembers`, for the units whose bits are in k1. The others are not read.
    void emitMaskedMembers(const Reg64& from, const RE_Unit_Set& units);
    void emitMaskedRange(const Reg64& from, RE_Unit_Ranges::Range range);
    void emitMaskedPrefixes(const Reg64& from, const RE_Prefix_Scan& scan);
    /// Puts into eax one bit for each of the sixteen positions from `from` on at which a prefix may begin. As
    /// many units as the scan reaches past them must be readable.
    void emitPrefixes(const Reg64& from, const RE_Prefix_Scan& scan);
    void emitBytes(bool saturate);
    void emitPrefixBytes(const RE_Prefix_Scan& scan, std::size_t place);
    Label& prefixTable(const std::uint8_t (&table)[16]);
    /// Jumps to `target` unless the text is at `offset` units after `from`. Its units must be readable.
    /// Clobbers nothing.
    void unlessText(const Reg64& from, const RE_Literal& literal, Label& target, std::size_t offset = 0);
    /// Texts are written out as comparisons with immediate operands: longer ones would be more code than they
    /// are worth.
    static constexpr std::size_t longestText = 256;
    /// Whether each unit of a literal that ignores case has one or two forms, as `unlessText` needs.
    static bool hasFewForms(const RE_Literal& literal);

    /// The units with one lower-case form. `count` goes beyond the list where there are more than two.
    struct Forms {
        char16_t list[2];
        std::size_t count = 0;
    };
    static Forms formsOf(char16_t lower);

    /// A constant that repeats this unit eight times.
    Label& words(char16_t unit);

private:
    /// Eight rows of sixteen: as many units as one byte of bits by one shuffle can tell.
    static constexpr std::size_t tableUnits = 128;

    static RE_Machine_Vectors vectorsWithin(RE_Machine_Vectors widest);
    void emitEqualTo(const Xbyak::RegExp& from, const Xbyak::Xmm& result);
    void emitRangeMembers(RE_Unit_Ranges::Range range);
    void emitEqualToAny(const RE_Units_Outside& sought);
    Label& rowsOf(const RE_Unit_Set& units);
    Label& rowBits();
};

}  // namespace corvane_machine
