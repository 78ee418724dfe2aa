// Code of the instructions of a program.
#pragma once

#include "regexp/machine/unit_code.h"
#include "regexp/program/instruction.h"

namespace corvane_machine {

class Program_Code : protected Unit_Code {
protected:
    Program_Code(const RE_Program& source, std::size_t mostBytes);

    /// An attempt, from `p` on. Goes to `failedLabel` where it fails.
    void emitProgram();

    void forgetPlaces();

    Label failedLabel;
    std::int64_t mostSteps;  ///< from one check to the next

private:
    std::size_t indexOf(const RE_Instruction* in) const {
        return static_cast<std::size_t>(in - program.instructions.data());
    }
    Label& labelOf(const RE_Instruction* in) { return places[indexOf(in)]; }

    void findLoops();
    void emitChain(const RE_Instruction* in);
    void emitBody(const RE_Instruction& in);
    void emitText(const RE_Instruction& in);
    void emitTokenRun(const RE_Instruction& in);
    void emitRunEnd(const RE_Instruction& in);
    void emitShortRun(const RE_Instruction& in, Label& ended, Label& stopped);
    void emitLeadingRun(const RE_Instruction& in);
    void emitChoice(const RE_Instruction& in);
    void emitSparedWays(const RE_Instruction& in, std::vector<Label*>& spared, Label& many);
    void emitStartToken(const RE_Instruction& in);
    void emitEndToken(const RE_Instruction& in);
    void emitRecord(std::size_t number, const char16_t* name);
    void emitTokenText(const RE_Instruction& in);
    void emitEdge(const RE_Instruction& in);
    void emitGlanceSet(const RE_Instruction& in);
    void emitGlance(const RE_Instruction& in);
    void emitMatched(const RE_Instruction& in);

    const RE_Program& program;
    std::vector<Label> places;  // of the instructions
    std::vector<bool> emitted;
    std::vector<bool> loops;  // instructions that others behind them lead to
    std::vector<const RE_Instruction*> pending;
};

}  // namespace corvane_machine
