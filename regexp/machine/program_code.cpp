// The instructions of a program, one after another, except for runs and choices, which have files of their
// own.
//
// An instruction is written so that what follows it comes next in memory. What it needs from a node it takes
// while the code is made (numbers, sets, texts): the finished code reads no node.
//
// Steps are counted where the graph counts them, also on paths that fail: a test that fails has been visited.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/program_code.h"

#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"
#include "regexp/units/unit_set.h"

#include <algorithm>

namespace corvane_machine {

namespace {

// An instruction takes up to fifteen microseconds to be written, with all that is written for it later.
constexpr std::uint64_t workOfInstruction = 128;
constexpr std::uint64_t workOfPath = 16;

bool isText(const RE_Instruction& in) {
    return in.operation == RE_Operation::text || in.operation == RE_Operation::foldedText;
}

/// Whether its numbers fit into 32-bit operands, as bytes and with some room, and its text into a few
/// instructions. What is too large is left to the match loop.
bool isSmall(const RE_Instruction& in, std::size_t longestText) {
    constexpr std::uint32_t mostUnits = 1U << 24;
    const bool isEndless = in.most == RE_Instruction::noMaximum;
    return in.least < mostUnits && (isEndless || in.most < mostUnits) &&
           (!isText(in) || in.least <= longestText);
}

}  // namespace

// `mostSteps` follows from the invariant of the class; the one more is that of the seeker at the start.
Program_Code::Program_Code(const RE_Program& source, bool keeps, RE_Machine_Vectors widest,
                           std::span<std::byte> buffer, RE_Compile_Meter& meter)
    : Unit_Code(buffer, widest),
      mostSteps(static_cast<std::int64_t>(source.instructions.size()) * RE_Instruction::mostSteps + 1),
      work(meter),
      program(source),
      keepsTokens(keeps),
      places(source.instructions.size()),
      emitted(source.instructions.size()),
      loops(source.instructions.size()) {
    findLoops();
    findChoices();
}

// Every cycle has an edge to an instruction that is not later in the list than its origin. Marking the
// targets of all such edges marks an instruction in each cycle, whatever order lowering has chosen.
void Program_Code::findLoops() {
    const auto note = [&](const RE_Instruction& from, const RE_Instruction* to) {
        if (to <= &from) {
            loops[indexOf(to)] = true;
        }
    };
    for (const RE_Instruction& in : program.instructions) {
        if (in.operation == RE_Operation::choose) {
            const std::size_t ways = static_cast<const RE_Dispatch*>(in.node)->ways.size();
            std::for_each(in.ways, in.ways + ways, [&](const RE_Instruction* way) { note(in, way); });
        }
        if (in.operation != RE_Operation::failed) {
            note(in, in.next);
            note(in, in.otherwise);
        }
    }
}

// The work list is last in, first out, so an instruction is followed by its successor unless that has a place
// already. Recursion would not do: programs are as long as patterns.
void Program_Code::emitProgram() {
    pending.push_back(program.instructions.data());
    while (!pending.empty()) {
        const RE_Instruction* const in = pending.back();
        pending.pop_back();
        if (!emitted[indexOf(in)]) {
            emitChain(in);
        }
    }
    for (const auto& write : later) {
        work.spend(workOfPath);
        write();
    }
}

// Writes `in` and all that follows it, up to an instruction that has been written or that does not continue.
void Program_Code::emitChain(const RE_Instruction* in) {
    for (;;) {
        work.spend(workOfInstruction);
        openChoice = choiceOf[indexOf(in)];
        L(labelOf(in));
        // Starts and choices taken up again look at the meter, too; no other place does.
        if (loops[indexOf(in)]) {
            cmp(left, static_cast<std::uint32_t>(mostSteps));
            jl(leaveAt(*in), T_NEAR);
        }
        // An instruction that the code cannot say is left to the match loop, like any choice.
        if (!isSmall(*in, longestText)) {
            emitted[indexOf(in)] = true;
            jmp(leaveAt(*in), T_NEAR);
            return;
        }
        const Row row = rowFrom(in);
        emitted[indexOf(in)] = true;
        const bool isRow = row.size() > 1;
        if (isRow) {
            emitRow(row);
        }
        const RE_Instruction* const next = isRow ? row.back()->next : emitBody(*in);
        if (next == nullptr) {
            return;
        }
        pending.push_back(in->otherwise);
        in = next;
        // Every open choice has a failure of its own, although the instruction is the same: it has to be a
        // jump each time, and `emitted` says nothing about it.
        const bool failsIntoChoice = in->operation == RE_Operation::failed && openChoice != nullptr;
        if (emitted[indexOf(in)] || failsIntoChoice) {
            jmp(labelOf(in), T_NEAR);
            return;
        }
    }
}

namespace {

/// Whether the instruction is a node visited. Runs of several ends count one step for each end.
bool takesStep(const RE_Instruction& in) {
    return in.operation != RE_Operation::leave && in.operation != RE_Operation::failed &&
           classOf(in) != RE_Operation_Class::choiceRun;
}

}  // namespace

// Writes one instruction. Returns the one that follows it, or null where several or none can.
const RE_Instruction* Program_Code::emitBody(const RE_Instruction& in) {
    if (takesStep(in)) {
        dec(left);
    }
    // Some instructions cannot fail and have no `otherwise`: the label of such a one is never used.
    Label& otherwise = labelOf(in.otherwise != nullptr ? in.otherwise : &in);
    switch (in.operation) {
        case RE_Operation::leave:
            jmp(leaveAt(in), T_NEAR);
            return nullptr;
        case RE_Operation::lazyRun:
        case RE_Operation::givingRun:
            return emitChoiceRun(in);
        case RE_Operation::failed:
            jmp(failedLabel, T_NEAR);
            return nullptr;
        case RE_Operation::matched:
            emitMatched(in);
            return nullptr;
        case RE_Operation::pass:
            break;
        case RE_Operation::unit:
        case RE_Operation::eitherUnit:
        case RE_Operation::range:
        case RE_Operation::set:
        case RE_Operation::notLineFeed:
            loadUnit(otherwise);
            unlessTaken(in, otherwise);
            add(p, 2);
            break;
        case RE_Operation::text:
        case RE_Operation::foldedText:
            emitText(in);
            break;
        case RE_Operation::run:
            emitRunEnd(in);
            break;
        case RE_Operation::tokenRun:
            emitTokenRun(in);
            break;
        case RE_Operation::texts:
            emitTexts(in);
            break;
        case RE_Operation::choose:
            emitChoice(in);
            return nullptr;
        case RE_Operation::startToken:
            emitStartToken(in);
            break;
        case RE_Operation::endToken:
            emitEndToken(in);
            break;
        case RE_Operation::tokenText:
            emitTokenText(in);
            break;
        case RE_Operation::lineStart:
        case RE_Operation::lineEnd:
        case RE_Operation::textStart:
        case RE_Operation::textEnd:
        case RE_Operation::wordStart:
        case RE_Operation::wordEnd:
            emitEdge(in);
            break;
        case RE_Operation::glanceSet:
            emitGlanceSet(in);
            break;
        case RE_Operation::glanceTexts:
            emitGlanceTexts(in);
            break;
        case RE_Operation::glance:
            emitGlance(in);
            break;
    }
    return in.next;
}

// The step is uncounted before the code leaves: the match loop counts the node itself.
void Program_Code::emitText(const RE_Instruction& in) {
    const RE_Literal literal{in.text, in.least, in.operation == RE_Operation::foldedText};
    if (literal.ignoreCase && !hasFewForms(literal)) {
        inc(left);
        jmp(leaveAt(in), T_NEAR);
        return;
    }
    Label& otherwise = labelOf(in.otherwise);
    // The distance is compared, not `p` plus the length, so that no address outside of the subject is formed.
    mov(rax, end);
    sub(rax, p);
    cmp(rax, in.least * 2);
    jb(otherwise, T_NEAR);
    unlessText(p, literal, otherwise);
    add(p, in.least * 2);
}

// At the subject's ends there is no neighbour. For lines and words that is an edge like any other; for the
// text it is the only one.
void Program_Code::emitEdge(const RE_Instruction& in) {
    const RE_Operation operation = in.operation;
    const bool ahead = operation == RE_Operation::lineEnd || operation == RE_Operation::textEnd ||
                       operation == RE_Operation::wordEnd;
    Label& otherwise = labelOf(in.otherwise);
    Label& holds = fresh();
    cmp(p, ahead ? end : begin);
    if (operation == RE_Operation::textStart || operation == RE_Operation::textEnd) {
        ahead ? jb(otherwise, T_NEAR) : ja(otherwise, T_NEAR);
        return;
    }
    ahead ? jae(holds, T_NEAR) : jbe(holds, T_NEAR);
    // The set is that of word units; without one the edge is that of a line.
    movzx(eax, ahead ? word[p] : word[p - 2]);
    if (in.units != nullptr) {
        unlessIn(*in.units, otherwise, false);
    } else {
        cmp(eax, std::uint32_t{u'\n'});
        jne(otherwise, T_NEAR);
    }
    L(holds);
}

// A lookaround of one unit. With `flag` it looks behind. Nothing is consumed, so it needs no frame and no
// exit.
void Program_Code::emitGlanceSet(const RE_Instruction& in) {
    Label& otherwise = labelOf(in.otherwise);
    if (in.flag) {
        cmp(p, begin);
        jbe(otherwise, T_NEAR);
        movzx(eax, word[p - 2]);
    } else {
        loadUnit(otherwise);
    }
    unlessIn(*in.units, otherwise);
}

// Where one of the texts begins, nothing is consumed.
void Program_Code::emitGlanceTexts(const RE_Instruction& in) {
    const auto& look = static_cast<const RE_Lookaround_Assertion&>(*in.node);
    Label& taken = fresh();
    if (const auto* const string = nodeAs<RE_String>(look.body)) {
        const std::u16string_view one(string->text, string->length);
        emitTextsAfter({&one, 1}, 0, 0, labelOf(in.otherwise), taken);
    } else {
        emitTextsAt(static_cast<const RE_Literal_Set&>(*look.body).literals, labelOf(in.otherwise), taken);
    }
    L(taken);
}

// Resumed at `decided`, after the search has put the answer into the registers.
void Program_Code::emitGlance(const RE_Instruction& in) {
    Label& decided = fresh();
    jmp(exitFor(RE_Machine_Exit::glance, &in, &decided), T_NEAR);
    L(decided);
    cmp(at(offsetof(RE_Search_Registers, holds)), 0);
    je(labelOf(in.otherwise), T_NEAR);
}

// The end of the pattern refuses an empty match where the search wants that: it is a failure like any
// other.
void Program_Code::emitMatched(const RE_Instruction& in) {
    Label& accepted = exitFor(RE_Machine_Exit::matched, &in);
    // Only a match that consumed nothing since the start can be refused.
    cmp(p, start);
    jne(accepted, T_NEAR);
    cmp(at(offsetof(RE_Search_Registers, rejectEmpty)), 0);
    je(accepted, T_NEAR);
    jmp(failedTo(), T_NEAR);
}

namespace {

/// A row writes its tests twice, the second time for units near the end.
constexpr std::size_t longestRow = 16;

}  // namespace

bool Program_Code::isUnitTest(const RE_Instruction& in) {
    return classOf(in) == RE_Operation_Class::unit;
}

/// The tests of one unit from `in` on that nothing else leads to, each of which fails the attempt when it
/// fails. Only then may one test of the room serve for all: which of them fails first makes no difference but
/// in steps.
Program_Code::Row Program_Code::rowFrom(const RE_Instruction* in) const {
    Row row;
    while (row.size() < longestRow && isUnitTest(*in) && in->otherwise->operation == RE_Operation::failed &&
           !emitted[indexOf(in)] && choiceOf[indexOf(in)] == openChoice &&
           (row.empty() || !loops[indexOf(in)])) {
        row.push_back(in);
        in = in->next;
    }
    return row;
}

// Tests the room once, then each unit without moving `p`. A test that fails is at an index of its own in the
// row, so the steps up to it are subtracted on a path of its own. Near the end the tests are written one by
// one.
void Program_Code::emitRow(const Row& row) {
    Label& nearEnd = fresh();
    const auto sizeOf = [](std::size_t units) { return static_cast<int>(units * sizeof(char16_t)); };
    lea(rax, ptr[p + sizeOf(row.size())]);
    cmp(rax, end);
    ja(nearEnd, T_NEAR);
    for (std::size_t i = 0; i < row.size(); ++i) {
        Label& failed = fresh();
        movzx(eax, word[p + sizeOf(i)]);
        unlessTaken(*row[i], failed);
        later.emplace_back([this, i, &failed, choice = openChoice] {
            openChoice = choice;
            L(failed);
            // The tests up to and including this one were visited.
            sub(left, static_cast<std::uint32_t>(i + 1));
            jmp(failedTo(), T_NEAR);
        });
        emitted[indexOf(row[i])] = true;
    }
    sub(left, static_cast<std::uint32_t>(row.size()));
    add(p, static_cast<std::uint32_t>(sizeOf(row.size())));
    later.emplace_back([this, row, &nearEnd, choice = openChoice] {
        openChoice = choice;
        L(nearEnd);
        for (const RE_Instruction* in : row) {
            if (in != row.front()) {
                L(labelOf(in));
            }
            emitBody(*in);
        }
        jmp(labelOf(row.back()->next), T_NEAR);
    });
}

}  // namespace corvane_machine

#endif
