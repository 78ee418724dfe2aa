// What all machine code is written with: the registers that an attempt lives in, labels, constants, returns.
#pragma once

#include "regexp/machine/machine_code.h"
#include "regexp/state/search_registers.h"

#include <xbyak/xbyak.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

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

}  // namespace corvane_machine
