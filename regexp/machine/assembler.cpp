// Machine code for x86-64, put together.
#include "regexp/machine/machine_code.h"

#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/start_code.h"
#include "regexp/nodes/dispatch.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t bytesAnInstruction = 512;
constexpr std::size_t bytesOfTheRest = 4096;
constexpr std::size_t bytesOfATable = RE_Branch_Start::columns * sizeof(void*);
constexpr std::size_t bytesOfAChoice = 2048;
constexpr std::size_t bytesOfTexts = 8192;
constexpr std::size_t mostUnitsOfText = 256;
constexpr std::size_t bytesOfAUnit = 192;  // it may stand in the code six times

std::size_t roomFor(const RE_Program& program) {
    std::size_t room = bytesOfTheRest + program.instructions.size() * bytesAnInstruction;
    for (const RE_Instruction& in : program.instructions) {
        const bool isText = in.operation == RE_Operation::text || in.operation == RE_Operation::foldedText;
        room += in.operation == RE_Operation::choose ? bytesOfATable : 0;
        if (in.operation == RE_Operation::texts) {
            room += bytesOfTexts;
        }
        if (in.operation == RE_Operation::lazyRun || in.operation == RE_Operation::givingRun) {
            room += bytesOfAChoice;
        }
        room += isText ? std::min<std::size_t>(in.least, mostUnitsOfText) * bytesOfAUnit : 0;
    }
    return room;
}

class Assembler : public RE_Machine_Code, private corvane_machine::Start_Code {
public:
    Assembler(const RE_Graph_Facts& graphFacts, const RE_Node* graphRoot)
        : Start_Code(graphFacts, graphRoot, roomFor(*graphFacts.program)) {
        emitEntry();
        Xbyak::Label beginLabel;
        L(beginLabel);
        emitBegin();
        emitStarts();
        emitProgram();
        emitExits();
        emitConstants();
        setProtectModeRE();
        entry = getCode<Entry>();
        first = reinterpret_cast<decltype(first)>(reinterpret_cast<std::uintptr_t>(beginLabel.getAddress()));
        nextStart = nextStartLabel.getAddress();
        attempt = attemptLabel.getAddress();
        RE_Machine_Code::mostSteps = Start_Code::mostSteps;
        forgetPlaces();
        gains = graphFacts.program->entry != nullptr || seeks();
    }
    Assembler(const Assembler&) = delete;
    Assembler& operator=(const Assembler&) = delete;

    bool gains;  ///< there is anything that the code does by itself
};

}  // namespace

std::unique_ptr<RE_Machine_Code> RE_Machine_Code::make(const RE_Graph_Facts& facts, const RE_Node* root) {
    if (facts.program == nullptr) {
        return nullptr;
    }
    try {
        auto code = std::make_unique<Assembler>(facts, root);
        return code->gains ? std::move(code) : nullptr;
    } catch (const Xbyak::Error&) {
        return nullptr;  // the machine gives no memory that may be run
    }
}

#else

std::unique_ptr<RE_Machine_Code> RE_Machine_Code::make(const RE_Graph_Facts&, const RE_Node*) {
    return nullptr;
}

#endif
