// Choices: between several ways on, of which the next unit or text leaves one at most; and between the ends
// of a run.
//
// The first kind leaves no record in the match loop either. It is said to be spared there, and counts towards
// the beginning of the memo (`memoCountdown`) like a choice taken up again, since a loop that leaves no
// records could otherwise be gone through from each start.
//
// The second kind is what code keeps by itself. It works because the rest of such a choice (`ownRest`) takes no
// others, is led to by nothing else, and writes to no token that was begun before:
//
//     leave      nothing is chosen so far, and the code cannot do it: the match loop continues at the run
//     chosen     `p` is an end: note it, with the meter and the countdown, and continue in the rest
//     again      the rest has failed: restore the tokens, go to the next end, and on to `chosen`
//     handOver   anything unusual in the rest, or too few steps: restore everything as it was at `chosen`
//                and let the match loop take the same choice, with a record
//
// A rest may hold further such choices, up to `mostChoices` within each other. Where the innermost is spent the one around
// it is taken up again. What cannot be done within any of them is handed over by the outermost: the match loop then
// does once more, and counts once, what followed there.
//
// Invariant: what the rest has done can be forgotten at any time. All that it writes is `p`, scratch
// registers, the meter, the countdown, the frames of the choices within it, and slots of tokens above `written`.
//
// No choice is taken here while there is a memo: the code cannot query it.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/program_code.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/program/own_rest.h"
#include "regexp/state/token_stack.h"
#include "regexp/units/unit_set.h"

#include <algorithm>

namespace corvane_machine {

// A table of addresses, indexed by the next unit: one for each unit of the table, one for all others, and one
// for the end of the subject. Columns with several ways leave for the match loop, which pushes a record.
void Program_Code::emitChoice(const RE_Instruction& in) {
    const auto& choice = static_cast<const RE_Dispatch&>(*in.node);
    Label& table = fresh();
    Label& many = fresh();
    Label& none = labelOf(in.otherwise);
    Label& chosen = fresh();
    pending.push_back(in.otherwise);
    mov(eax, static_cast<std::uint32_t>(RE_Branch_Start::atEnd));
    cmp(p, end);
    jae(chosen, T_NEAR);
    movzx(eax, word[p]);
    cmp(eax, static_cast<std::uint32_t>(RE_Branch_Start::others));
    jbe(chosen, T_NEAR);
    mov(eax, static_cast<std::uint32_t>(RE_Branch_Start::others));
    L(chosen);
    lea(other, ptr[rip + table]);
    jmp(qword[other + rax * 8]);
    L(many);
    inc(left);
    jmp(leaveAt(in), T_NEAR);
    std::vector<Label*> spared(choice.ways.size(), nullptr);
    const auto sparedTo = [&](std::size_t way) -> Label& {
        if (spared[way] == nullptr) {
            spared[way] = &fresh();
        }
        return *spared[way];
    };
    align(8);
    L(table);
    tables.push_back(getSize());
    for (std::size_t column = 0; column < RE_Branch_Start::columns; ++column) {
        const std::size_t way = choice.onlyWayOf(column);
        putL(way == RE_Dispatch::noWay ? none : way == RE_Dispatch::manyWays ? many : sparedTo(way));
    }
    emitSparedWays(in, spared, many);
}

// A choice that was spared counts towards the beginning of the memo. The one that begins it is left to the
// match loop, which makes the memo.
void Program_Code::emitSparedWays(const RE_Instruction& in, std::vector<Label*>& spared, Label& many) {
    for (std::size_t way = 0; way < spared.size(); ++way) {
        if (spared[way] != nullptr) {
            L(*spared[way]);
            cmp(at(offsetof(RE_Search_Registers, memoCountdown)), 1);
            jbe(many, T_NEAR);
            dec(at(offsetof(RE_Search_Registers, memoCountdown)));
            jmp(labelOf(in.ways[way]), T_NEAR);
            pending.push_back(in.ways[way]);
        }
    }
}

// One of a few texts, none of which begins another: so at most one of them is at `p`, and the order in
// which they are tested does not matter. They are sorted, and what several of them begin with is tested once.
void Program_Code::emitTexts(const RE_Instruction& in) {
    Label& taken = fresh();
    Label& many = fresh();
    emitTextsAt(static_cast<const RE_Literal_Set&>(*in.node).literals, labelOf(in.otherwise), taken);
    L(many);
    inc(left);
    jmp(leaveAt(in), T_NEAR);
    L(taken);
    cmp(at(offsetof(RE_Search_Registers, memoCountdown)), 1);
    jbe(many, T_NEAR);
    dec(at(offsetof(RE_Search_Registers, memoCountdown)));
    add(p, rax);
}

// Jumps to `taken` with the size in bytes of the text at `p` in rax, or to `none`.
void Program_Code::emitTextsAt(const RE_Literal_Trie& literals, Label& none, Label& taken) {
    Texts texts;
    for (std::size_t i = 0; i < literals.count(); ++i) {
        texts.push_back(literals.text(i));
    }
    std::ranges::sort(texts);
    emitTextsAfter(texts, 0, 0, none, taken);
}

// All texts have their first `known` units in common, and these are at `p`; `readable` units from `p` on
// lie before the end. Jumps to `taken` with the size in bytes of the text that is there in rax. Calls
// itself once for each unit by which they differ: there are few texts, and each call has fewer.
void Program_Code::emitTextsAfter(std::span<const std::u16string_view> texts, std::size_t known,
                                  std::size_t readable, Label& none, Label& taken) {
    const std::u16string_view one = texts.front();
    const auto differing = std::ranges::mismatch(one, texts.back()).in1;
    const auto common = static_cast<std::size_t>(differing - one.begin());
    const bool isLast = texts.size() == 1;
    // The unit by which the others differ is read as well. None of the texts ends before it, as none begins
    // another.
    const std::size_t needed = isLast ? common : common + 1;
    if (needed > readable) {
        lea(rax, ptr[p + static_cast<int>(needed * sizeof(char16_t))]);
        cmp(rax, end);
        ja(none, T_NEAR);
    }
    if (common > known) {
        unlessText(p, {one.data() + known, common - known, false}, none, known);
    }
    if (isLast) {
        mov(eax, static_cast<std::uint32_t>(common * sizeof(char16_t)));
        jmp(taken, T_NEAR);
        return;
    }
    while (!texts.empty()) {
        const char16_t unit = texts.front()[common];
        const auto next =
            std::ranges::find_if(texts, [&](std::u16string_view text) { return text[common] != unit; });
        const auto count = static_cast<std::size_t>(next - texts.begin());
        Label& others = fresh();
        unlessText(p, {&unit, 1, false}, count < texts.size() ? others : none, common);
        emitTextsAfter(texts.first(count), common + 1, std::max(needed, readable), none, taken);
        L(others);
        texts = texts.subspan(count);
    }
}

namespace {

// The units that every such run has are tested one by one: a scan of many would have to count steps.
constexpr std::uint32_t mostLeast = 16;
// To find the rest of a run takes a look at every instruction.
constexpr std::size_t instructionsAWork = 8;

bool isChoiceRun(const RE_Instruction& in) {
    return classOf(in) == RE_Operation_Class::choiceRun;
}

/// Whether the first unit of what begins with such an instruction, and the text after it, tell where it can
/// begin. A long text is left out, as its comparison would have to count steps.
bool saysWhere(const RE_Instruction& in) {
    if (in.operation == RE_Operation::text || in.operation == RE_Operation::foldedText) {
        return in.least < RE_Step_Meter::unitsAStep;
    }
    return classOf(in) == RE_Operation_Class::text || in.operation == RE_Operation::unit ||
           in.operation == RE_Operation::eitherUnit || in.operation == RE_Operation::set;
}

/// An end of a token: it consumes nothing, so what begins after it begins there.
bool isBracket(const RE_Instruction& in) {
    return classOf(in) == RE_Operation_Class::token;
}

}  // namespace

// A maximum between `nearUnits` and a step's worth of units is left to the match loop as a whole: it scans so
// far without counting, and the code does not.
//
// From the last to the first: a run within the rest of another is led to by that one alone, so it comes after it.
void Program_Code::findChoices() {
    choiceOf.resize(program.instructions.size());
    for (auto each = program.instructions.rbegin(); each != program.instructions.rend(); ++each) {
        const RE_Instruction& in = *each;
        const bool reachesFar = in.most > nearUnits && in.most < RE_Step_Meter::unitsAStep;
        if (isChoiceRun(in) && in.least <= mostLeast && !reachesFar) {
            noteChoice(in);
        }
    }
}

// Only runs whose rest is their own become choices of the code. The others stay `leave` instructions in
// effect.
void Program_Code::noteChoice(const RE_Instruction& run) {
    work.spend(1 + program.instructions.size() / instructionsAWork);
    auto found = std::make_unique<Choice>();
    found->run = &run;
    found->rest = ownRest(program, run, keptRuns);
    // As in the graph: where the rest seeks, ends at which it cannot begin are stepped over.
    if (static_cast<const RE_Consume&>(*run.node).restSeeks()) {
        found->first = isBracket(*run.next) ? run.next->next : run.next;
    }
    const RE_Instruction* const first = found->first;
    const bool isFolded = first != nullptr && first->operation == RE_Operation::foldedText;
    if (found->rest.empty() || (first != nullptr && !saysWhere(*first)) ||
        (isFolded && !hasFewForms(literalOf(*first)))) {
        return;
    }
    const auto has = [&](auto... operations) {
        return std::ranges::any_of(
            found->rest, [&](const RE_Instruction* in) { return ((in->operation == operations) || ...); });
    };
    found->records = has(RE_Operation::endToken, RE_Operation::tokenRun);
    found->spares = has(RE_Operation::choose, RE_Operation::texts);
    for (const auto& inner : choices) {
        if (std::ranges::find(found->rest, inner->run) != found->rest.end()) {
            found->nests = true;
            found->level = std::max(found->level, inner->level + 1);
        }
    }
    if (found->level >= RE_Search_Registers::mostChoices) {
        return;
    }
    for (const RE_Instruction* in : found->rest) {
        Choice*& innermost = choiceOf[indexOf(in)];
        innermost = innermost != nullptr ? innermost : found.get();
    }
    keptRuns.push_back(&run);
    choices.push_back(std::move(found));
}

// Writes the run and its choice. Returns the instruction with which the rest continues; null where there is
// no choice, and the match loop takes over at the run.
const RE_Instruction* Program_Code::emitChoiceRun(const RE_Instruction& in) {
    const auto known = std::ranges::find(choices, &in, &Choice::run);
    if (known == choices.end()) {
        jmp(leaveAt(in), T_NEAR);
        return nullptr;
    }
    Choice& each = **known;
    Label& failed = labelOf(in.otherwise);
    dec(left);
    emitChoiceEntry(each);
    if (in.operation == RE_Operation::lazyRun) {
        emitLazyRun(each, failed);
    } else {
        emitGivingRun(each, failed);
    }
    emitHandOver(each);
    L(each.chosen);
    return emitChosen(each);
}

// Refuses to choose while there is a memo. A token that is to begin the rest must have a text: without one
// the rest begins anywhere, or nowhere. Trap: flags of the first comparison live across the `mov`, which
// leaves them alone.
void Program_Code::emitChoiceEntry(Choice& each) {
    cmp(at(offsetof(RE_Search_Registers, memoCountdown)), 0);
    mov(kept(each, offsetof(RE_Kept_Choice, end)), p);
    je(each.leave, T_NEAR);
    if (each.first != nullptr && each.first->operation == RE_Operation::tokenText) {
        const auto lengthAt = static_cast<int>(offsetof(RE_TokenInfo, length));
        cmp(at(offsetof(RE_Search_Registers, inEffect)), each.first->least);
        jbe(each.leave, T_NEAR);
        mov(spare, at(offsetof(RE_Search_Registers, slots)));
        cmp(qword[spare + startOfToken(*each.first) + lengthAt], 0);
        je(each.leave, T_NEAR);
    }
    if (each.records) {
        mov(rax, at(offsetof(RE_Search_Registers, inEffect)));
        mov(kept(each, offsetof(RE_Kept_Choice, inEffect)), rax);
        mov(rax, at(offsetof(RE_Search_Registers, written)));
        mov(kept(each, offsetof(RE_Kept_Choice, written)), rax);
    }
}

// The rest writes to no tokens but those above the ones that were begun when the end was chosen (`ownRest`
// sees to that): to undo its writes is to call their slots stale again.
void Program_Code::emitTokensBack(const Choice& each) {
    if (!each.records) {
        return;
    }
    mov(rax, kept(each, offsetof(RE_Kept_Choice, inEffect)));
    mov(at(offsetof(RE_Search_Registers, inEffect)), rax);
    mov(rax, kept(each, offsetof(RE_Kept_Choice, written)));
    mov(at(offsetof(RE_Search_Registers, written)), rax);
}

// The rest has failed: the choice is taken up again, with everything that popping its record would do (the
// count of choices, the countdown to the memo). Where that makes something due that is not for the code (a
// poll for interrupts, the memo, a checkpoint) the choice is handed over instead.
void Program_Code::emitAgain(Choice& each, Label& failed) {
    L(each.again);
    mov(p, kept(each, offsetof(RE_Kept_Choice, end)));
    cmp(p, kept(each, offsetof(RE_Kept_Choice, limit)));
    je(failed, T_NEAR);
    mov(rax, at(offsetof(RE_Search_Registers, steps)));
    test(eax, 2047);
    jz(each.handOver, T_NEAR);
    cmp(at(offsetof(RE_Search_Registers, memoCountdown)), 1);
    jbe(each.handOver, T_NEAR);
    cmp(left, static_cast<std::uint32_t>(mostSteps));
    jl(each.handOver, T_NEAR);
    emitTokensBack(each);
    inc(at(offsetof(RE_Search_Registers, steps)));
    dec(at(offsetof(RE_Search_Registers, memoCountdown)));
}

// Leaves before anything was chosen: the step of the run is uncounted, and the match loop begins with it.
void Program_Code::emitLeave(Choice& each) {
    L(each.leave);
    mov(p, kept(each, offsetof(RE_Kept_Choice, end)));
    inc(left);
    jmp(leaveAt(*each.run), T_NEAR);
}

// Whatever the rest has done since the end was chosen is undone, the steps included: the match loop does it
// once more, and counts it. Within the rest of another choice that one is handed over.
void Program_Code::emitHandOver(Choice& each) {
    L(each.handOver);
    if (openChoice != nullptr) {
        jmp(openChoice->handOver, T_NEAR);
        return;
    }
    mov(left, kept(each, offsetof(RE_Kept_Choice, meter)));
    mov(p, kept(each, offsetof(RE_Kept_Choice, end)));
    emitTokensBack(each);
    if (each.spares || each.nests) {
        mov(rax, kept(each, offsetof(RE_Kept_Choice, countdown)));
        mov(at(offsetof(RE_Search_Registers, memoCountdown)), rax);
    }
    if (each.nests) {
        mov(rax, kept(each, offsetof(RE_Kept_Choice, steps)));
        mov(at(offsetof(RE_Search_Registers, steps)), rax);
    }
    mov(rax, kept(each, offsetof(RE_Kept_Choice, limit)));
    mov(at(offsetof(RE_Search_Registers, handedLimit)), rax);
    jmp(exitFor(RE_Machine_Exit::choice, each.run), T_NEAR);
}

// Notes what was so at this end. The instruction that begins the rest is passed where looking for the end has
// tested it already; its step is counted all the same. Those whose test was of the first unit alone are not
// passed.
const RE_Instruction* Program_Code::emitChosen(const Choice& each) {
    mov(kept(each, offsetof(RE_Kept_Choice, end)), p);
    mov(kept(each, offsetof(RE_Kept_Choice, meter)), left);
    if (each.spares || each.nests) {
        mov(rax, at(offsetof(RE_Search_Registers, memoCountdown)));
        mov(kept(each, offsetof(RE_Kept_Choice, countdown)), rax);
    }
    if (each.nests) {
        mov(rax, at(offsetof(RE_Search_Registers, steps)));
        mov(kept(each, offsetof(RE_Kept_Choice, steps)), rax);
    }
    const RE_Instruction& next = *each.run->next;
    if (&next != each.first || next.operation == RE_Operation::tokenText ||
        next.operation == RE_Operation::texts) {
        return &next;
    }
    const bool isText = next.operation == RE_Operation::text || next.operation == RE_Operation::foldedText;
    dec(left);
    add(p, static_cast<std::uint32_t>((isText ? next.least : 1) * sizeof(char16_t)));
    return next.next;
}

}  // namespace corvane_machine

#endif
