#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/code_writer.h"

#include <algorithm>

namespace corvane_machine {

namespace {

bool isEnd(RE_Machine_Exit reason) {
    return reason == RE_Machine_Exit::matched || reason == RE_Machine_Exit::noStart;
}

}  // namespace

Label& Code_Writer::fresh() {
    labels.push_back(std::make_unique<Label>());
    return *labels.back();
}

Label& Code_Writer::exitFor(RE_Machine_Exit reason, const RE_Instruction* instruction, Label* resume) {
    exits.push_back(std::make_unique<Exit>(Exit{{}, reason, instruction, resume}));
    return exits.back()->label;
}

void Code_Writer::emitEntry() {
    push(rbx);
    push(rbp);
    mov(p, at(offsetof(RE_Search_Registers, cursor)));
    mov(end, at(offsetof(RE_Search_Registers, subjectEnd)));
    mov(begin, at(offsetof(RE_Search_Registers, subjectBegin)));
    mov(left, at(offsetof(RE_Search_Registers, meter)));
    mov(start, at(offsetof(RE_Search_Registers, matchStart)));
    mov(runBegin, at(offsetof(RE_Search_Registers, runBegin)));
    jmp(at(offsetof(RE_Search_Registers, resume)));
}

void Code_Writer::emitBegin() {
    push(rbx);
    push(rbp);
    mov(end, at(offsetof(RE_Search_Registers, subjectEnd)));
    mov(begin, at(offsetof(RE_Search_Registers, subjectBegin)));
    mov(left, at(offsetof(RE_Search_Registers, meter)));
    xor_(start.cvt32(), start.cvt32());
}

// Exits write back what the attempt has changed, as far as anybody asks for it.
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

/// Exits that end a search are one.
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
    align(16);
    for (const Constant& each : constants) {
        L(*each.label);
        db(each.bytes.data(), each.bytes.size());
    }
}

// Constants stand behind the code.
Label& Code_Writer::constant(const Bytes& bytes) {
    const auto known = std::ranges::find(constants, bytes, &Constant::bytes);
    if (known != constants.end()) {
        return *known->label;
    }
    constants.push_back({bytes, &fresh()});
    return *constants.back().label;
}

void Code_Writer::forgetLabels() {
    std::vector<std::unique_ptr<Label>>().swap(labels);
    std::vector<std::unique_ptr<Exit>>().swap(exits);
    std::vector<Constant>().swap(constants);
    reset();
}

}  // namespace corvane_machine

#endif
