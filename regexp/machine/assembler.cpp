// Puts machine code for x86-64 together: the frame of the code (`Code_Writer`), the choice of vectors, and
// the order of all parts (`Assembler`).
//
// Without an assembler the last lines are all that is compiled: there is no code then, and searches run the
// program or the graph.
#include "regexp/machine/machine_code.h"

#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/program_code.h"
#include "regexp/nodes/dispatch.h"

#include <xbyak/xbyak_util.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <span>
#include <utility>

namespace corvane_machine {

namespace {

/// Reasons that end a search. Nothing is resumed after them, so less has to be written back.
bool isEnd(RE_Machine_Exit reason) {
    return reason == RE_Machine_Exit::matched || reason == RE_Machine_Exit::noStart;
}

}  // namespace

// Owned one by one: a label must not move, as jumps that are not resolved yet refer to it.
Label& Code_Writer::fresh() {
    labels.push_back(std::make_unique<Label>());
    return *labels.back();
}

Label& Code_Writer::exitFor(RE_Machine_Exit reason, const RE_Instruction* instruction, Label* resume) {
    exits.push_back(std::make_unique<Exit>(Exit{{}, reason, instruction, resume}));
    return exits.back()->label;
}

// Loads from the search what the registers hold while the code runs. They are written back by each exit, as
// far as the search or the next run reads them.
void Code_Writer::emitEntry() {
    push(rbx);
    push(rbp);
    mov(p, at(offsetof(RE_Search_Registers, cursor)));
    mov(end, at(offsetof(RE_Search_Registers, subjectEnd)));
    mov(begin, at(offsetof(RE_Search_Registers, subjectBegin)));
    mov(left, at(offsetof(RE_Search_Registers, meter)));
    mov(start, at(offsetof(RE_Search_Registers, matchStart)));
    mov(runBegin, at(offsetof(RE_Search_Registers, runBegin)));
    // The place is in memory: the code continues anywhere, with all its registers as they were.
    jmp(at(offsetof(RE_Search_Registers, resume)));
}

void Code_Writer::emitBegin() {
    push(rbx);
    push(rbp);
    mov(end, at(offsetof(RE_Search_Registers, subjectEnd)));
    mov(begin, at(offsetof(RE_Search_Registers, subjectBegin)));
    mov(left, at(offsetof(RE_Search_Registers, meter)));
    // No attempt has begun: until one has, the registers say that there is no start.
    xor_(start.cvt32(), start.cvt32());
}

// Writes back what the attempt has changed, as far as somebody reads it after that reason. The parts of an
// exit that differ (instruction, resume place, reason) come first, and all of them share what follows `code`.
void Code_Writer::emitExits() {
    emitEnds(RE_Machine_Exit::matched);
    mov(at(offsetof(RE_Search_Registers, cursor)), p);
    mov(at(offsetof(RE_Search_Registers, matchStart)), start);
    emitReturn(RE_Machine_Exit::matched);
    emitEnds(RE_Machine_Exit::noStart);
    emitReturn(RE_Machine_Exit::noStart);
    Label code;
    for (const auto& exit : exits) {
        if (isEnd(exit->reason)) {
            continue;
        }
        L(exit->label);
        if (exit->instruction != nullptr) {
            mov(rax, reinterpret_cast<std::uint64_t>(exit->instruction));
            mov(at(offsetof(RE_Search_Registers, instruction)), rax);
        }
        if (exit->resume != nullptr) {
            lea(rax, ptr[rip + *exit->resume]);
            mov(at(offsetof(RE_Search_Registers, resume)), rax);
        }
        mov(eax, static_cast<std::uint32_t>(exit->reason));
        jmp(code, T_NEAR);
    }
    L(code);
    mov(at(offsetof(RE_Search_Registers, cursor)), p);
    mov(at(offsetof(RE_Search_Registers, matchStart)), start);
    mov(at(offsetof(RE_Search_Registers, runBegin)), runBegin);
    emitLeave();
}

/// All exits that end a search for the same reason are one place.
void Code_Writer::emitEnds(RE_Machine_Exit reason) {
    for (const auto& exit : exits) {
        if (exit->reason == reason) {
            L(exit->label);
        }
    }
}

void Code_Writer::emitReturn(RE_Machine_Exit reason) {
    mov(eax, static_cast<std::uint32_t>(reason));
    emitLeave();
}

void Code_Writer::emitLeave() {
    mov(at(offsetof(RE_Search_Registers, meter)), left);
    pop(rbp);
    pop(rbx);
    ret();
}

void Code_Writer::emitConstants() {
    // Vector loads from memory operands must be aligned.
    align(16);
    for (const Constant& each : constants) {
        L(*each.label);
        db(each.bytes.data(), each.bytes.size());
    }
}

// The same bytes are often needed by several instructions: they are written once.
Label& Code_Writer::constant(const Bytes& bytes) {
    const auto known = std::ranges::find(constants, bytes, &Constant::bytes);
    if (known != constants.end()) {
        return *known->label;
    }
    constants.push_back({bytes, &fresh()});
    return *constants.back().label;
}

namespace {

RE_Machine_Vectors vectorsOfProcessor() {
    using Xbyak::util::Cpu;
    const Cpu processor;
    if (!processor.has(Cpu::tSSE41) || !processor.has(Cpu::tSSSE3)) {
        return RE_Machine_Vectors::none;
    }
    if (!processor.has(Cpu::tAVX2)) {
        return RE_Machine_Vectors::narrow;
    }
    const bool masks = processor.has(Cpu::tAVX512BW) && processor.has(Cpu::tAVX512VL) &&
                       processor.has(Cpu::tBMI1) && processor.has(Cpu::tBMI2);
    return masks ? RE_Machine_Vectors::masked : RE_Machine_Vectors::wide;
}

}  // namespace

// Querying the processor takes longer than making the code, most of all under a hypervisor, which traps the
// query: once per process is enough.
RE_Machine_Vectors Unit_Code::vectorsWithin(RE_Machine_Vectors widest) {
    static const RE_Machine_Vectors known = vectorsOfProcessor();
    return std::min(known, widest);
}

}  // namespace corvane_machine

namespace {

// Upper bounds of the size of the code, in bytes. The buffer in which it is written does not grow, as places in it are
// referred to by address; code that did not fit would be refused by the assembler with an exception, and the pattern would
// go without.
constexpr std::size_t bytesOnStack = 16384;
constexpr std::size_t bytesAnInstruction = 512;
constexpr std::size_t bytesOfTheRest = 4096;
constexpr std::size_t bytesOfATable = RE_Branch_Start::columns * sizeof(void*);
constexpr std::size_t bytesOfAChoice = 2048;
constexpr std::size_t bytesOfTexts = 8192;
constexpr std::size_t mostUnitsOfText = 256;
// The text of an instruction may be written as the test itself, as what a choice looks for, and in a row near
// the end.
constexpr std::size_t bytesOfAUnit = 192;  // it may be in the code six times

std::size_t roomFor(const RE_Program& program) {
    std::size_t room = bytesOfTheRest + program.instructions.size() * bytesAnInstruction;
    for (const RE_Instruction& in : program.instructions) {
        const bool isText = in.operation == RE_Operation::text || in.operation == RE_Operation::foldedText;
        room += in.operation == RE_Operation::choose ? bytesOfATable : 0;
        if (in.operation == RE_Operation::texts || in.operation == RE_Operation::glanceTexts) {
            room += bytesOfTexts;
        }
        if (in.operation == RE_Operation::lazyRun || in.operation == RE_Operation::givingRun) {
            room += bytesOfAChoice;
        }
        room += isText ? std::min<std::size_t>(in.least, mostUnitsOfText) * bytesOfAUnit : 0;
    }
    return room;
}

/// Writes the code of a pattern into a buffer, and then to the place where it is run.
class Assembler : private corvane_machine::Start_Code {
public:
    Assembler(const RE_Graph_Facts& graphFacts, std::span<std::byte> buffer, RE_Compile_Meter& meter)
        : Start_Code(graphFacts, graphFacts.root, buffer, meter) {
        // The order is the layout of the code: entries, starts, program, exits, constants. `emitBegin` falls
        // through into `emitStarts`, and the next start into the program.
        emitEntry();
        L(beginLabel);
        emitBegin();
        emitStarts();
        emitProgram();
        meter.ask();
        emitExits();
        emitConstants();
    }
    /// Whether there is anything that the code does by itself.
    bool gains(const RE_Graph_Facts& graphFacts) const {
        return graphFacts.program.entry != nullptr || seeks();
    }

    /// Null where there is no memory that may be executed, and where the code is too large.
    std::unique_ptr<RE_Machine_Code> place(RE_Making& making) {
        if (getSize() > making.mostBytes) {
            return nullptr;
        }
        making.bytesOfMachine = getSize();
        RE_Code_Space space = RE_Code_Space::take(getSize());
        if (!space) {
            return nullptr;
        }
        std::memcpy(space.writable(), getCode(), getSize());
        // All else in the code is relative to where it stands.
        const std::uint8_t* const run = reinterpret_cast<const std::uint8_t*>(space.executable());
        for (const std::size_t table : tables) {
            moveTable(space.writable() + table, run - getCode());
        }
        const auto placeOf = [&](const Xbyak::Label& label) {
            return run + (label.getAddress() - getCode());
        };
        auto code =
            std::make_unique<RE_Machine_Code>(std::move(space), std::bit_cast<RE_Machine_Code::Entry>(run),
                                              std::bit_cast<RE_Machine_Code::First>(placeOf(beginLabel)));
        code->nextStart = placeOf(nextStartLabel);
        code->attempt = placeOf(attemptLabel);
        code->mostSteps = mostSteps;
        return code;
    }

private:
    // A table holds addresses, which are those of the buffer so far.
    static void moveTable(std::byte* table, std::ptrdiff_t distance) {
        for (std::size_t column = 0; column < RE_Branch_Start::columns;
             ++column, table += sizeof(std::uint64_t)) {
            std::uint64_t address;
            std::memcpy(&address, table, sizeof address);
            address += static_cast<std::uint64_t>(distance);
            std::memcpy(table, &address, sizeof address);
        }
    }

    Xbyak::Label beginLabel;
};

}  // namespace

std::unique_ptr<RE_Machine_Code> RE_Machine_Code::make(const RE_Graph_Facts& facts, RE_Making& making) {
    if (facts.program.instructions.empty()) {
        return nullptr;
    }
    // The code of most patterns fits on the stack. Constants are aligned by their addresses here, so the buffer has to be as
    // aligned as the place where the code will run.
    alignas(std::max_align_t) std::array<std::byte, bytesOnStack> small;
    static_assert(alignof(std::max_align_t) >= 16 && __STDCPP_DEFAULT_NEW_ALIGNMENT__ >= 16);
    const std::size_t room = roomFor(facts.program);
    std::unique_ptr<std::byte[]> large;
    if (room > small.size()) {
        large = std::make_unique_for_overwrite<std::byte[]>(room);
    }
    try {
        Assembler assembler(facts, {large != nullptr ? large.get() : small.data(), room}, making.meter);
        making.meter.ask();
        return assembler.gains(facts) ? assembler.place(making) : nullptr;
    } catch (const Xbyak::Error&) {
        return nullptr;
    }
}

#else

std::unique_ptr<RE_Machine_Code> RE_Machine_Code::make(const RE_Graph_Facts&, RE_Making&) {
    return nullptr;
}

#endif

const RE_Machine_Code* RE_Machine_Code::obtain(const RE_Graph_Facts& facts, RE_Compile_Monitor* monitor) {
    RE_Speed_Ups& speedUps = facts.speedUps;
    return speedUps.obtain(speedUps.machineCode, monitor,
                           [&facts](RE_Making& making) { return make(facts, making); });
}
