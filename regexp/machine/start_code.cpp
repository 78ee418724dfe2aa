#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/start_code.h"

#include "regexp/nodes/consume.h"
#include "regexp/nodes/seeker.h"
#include "regexp/state/step_meter.h"
#include "regexp/units/unit_set.h"

#include <algorithm>
#include <bit>
#include <optional>

namespace corvane_machine {

namespace {

constexpr int stepShift = std::countr_zero(RE_Step_Meter::unitsAStep);

const RE_Prefix_Scan* prefixesOf(const RE_Node* root) {
    const auto* const seeker = dynamic_cast<const StringPrefixSeeker*>(root);
    return seeker != nullptr ? seeker->finder.prefixScan() : nullptr;
}

std::optional<char16_t> onlyUnit(const RE_Unit_Set* units) {
    if (units == nullptr) {
        return std::nullopt;
    }
    const RE_Unit_Ranges ranges(*units);
    const bool isOne = ranges.count == 1 && ranges.list[0].low == ranges.list[0].high;
    return isOne ? std::optional(ranges.list[0].low) : std::nullopt;
}

}  // namespace

Start_Code::Start_Code(const RE_Graph_Facts& graphFacts, const RE_Node* graphRoot, std::size_t mostBytes)
    : Program_Code(*graphFacts.program, graphFacts.keepsTokens, mostBytes),
      facts(graphFacts),
      root(graphRoot) {}

// The code begins here, too: behind the question whether there is room for a start.
void Start_Code::emitStarts() {
    jmp(seekLabel, T_NEAR);
    emitFailed();
    emitNextStart();
    emitAttempt();
}

// Whoever runs the code does all else that is due behind a failed attempt: that is asked for first.
void Start_Code::emitFailed() {
    L(failedLabel);
    Label& more = exitFor(RE_Machine_Exit::failed);
    mov(rax, at(offsetof(RE_Search_Registers, steps)));
    test(eax, 2047);
    jz(more, T_NEAR);
    if (!facts.needed.empty()) {
        cmp(left, at(offsetof(RE_Search_Registers, askLeft)));
        jle(more, T_NEAR);
    }
    mov(p, start);
    emitHopeless(more);
    inc(at(offsetof(RE_Search_Registers, steps)));
    add(p, 2);
}

// As `RE_Consume::lastHopelessStart` has it, for runs that were measured.
void Start_Code::emitHopeless(Label& more) {
    const RE_Consume* const loop = facts.leadingLoop;
    if (loop == nullptr || (loop->maximum != RE_Consume::noMaximum && loop->minimum < 2)) {
        return;
    }
    const std::size_t run = offsetof(RE_Search_Registers, leadingRun);
    Label& unmeasured = fresh();
    cmp(start, at(run + offsetof(RE_Measured_Run, begin)));
    jne(loop->isNotedUpTo() ? unmeasured : more, T_NEAR);
    if (loop->maximum == RE_Consume::noMaximum) {
        mov(p, at(run + offsetof(RE_Measured_Run, end)));
        return;
    }
    mov(other, at(run + offsetof(RE_Measured_Run, end)));
    mov(rax, other);
    sub(rax, start);
    shr(rax, 1);
    cmp(rax, static_cast<std::uint32_t>(loop->minimum));
    cmovb(p, other);
    L(unmeasured);
}

void Start_Code::emitNextStart() {
    L(nextStartLabel);
    cmp(p, at(offsetof(RE_Search_Registers, lastStart)));
    ja(exitFor(RE_Machine_Exit::noStart), T_NEAR);
    L(seekLabel);
    if (facts.start.rootSeeks) {
        emitSeek();
    }
}

// Looks for a start from `p` on. A scan counts as many steps as one by the root.
void Start_Code::emitSeek() {
    const auto* const seeker = dynamic_cast<const StringStringSeeker*>(root);
    const std::optional<char16_t> alone = scansWideVectors ? onlyUnit(facts.start.units) : std::nullopt;
    if (alone) {
        const RE_Unit_Pair pair{*alone, *alone};
        emitSeekLiteral({&*alone, 1, false}, {.first = pair, .second = pair, .firstAt = 0, .secondAt = 0});
    } else if (facts.start.units != nullptr) {
        emitSeekUnits(*facts.start.units);
    } else if (root->kind == RE_Node_Kind::lineStart && scansVectors) {
        emitSeekLineStart();
    } else if (root->kind == RE_Node_Kind::textStart) {
        cmp(p, begin);
        ja(exitFor(RE_Machine_Exit::noStart), T_NEAR);
    } else if (seeker != nullptr && canSeek(seeker->string)) {
        emitSeekLiteral(seeker->string.literal(), *seeker->string.rarestUnits());
    } else if (const RE_Prefix_Scan* const scan = prefixesOf(root); scan != nullptr && scansVectors) {
        emitSeekPrefixes(*scan);
    } else {
        leavesSeekToRoot = true;
        mov(runBegin, p);
        jmp(exitFor(RE_Machine_Exit::seek), T_NEAR);
    }
}

// The start is at `runBegin`.
void Start_Code::emitFound() {
    mov(rax, runBegin);
    sub(rax, p);
    shr(rax, 1 + stepShift);
    sub(left, rax);
    mov(p, runBegin);
    cmp(p, at(offsetof(RE_Search_Registers, lastStart)));
    ja(exitFor(RE_Machine_Exit::noStart), T_NEAR);
}

// There is none up to the subject's end.
void Start_Code::emitNowhere(Label& nowhere) {
    Label& found = fresh();
    jmp(found, T_NEAR);
    L(nowhere);
    mov(rax, end);
    sub(rax, p);
    shr(rax, 1 + stepShift);
    sub(left, rax);
    jmp(exitFor(RE_Machine_Exit::noStart), T_NEAR);
    L(found);
}

void Start_Code::emitAttempt() {
    L(attemptLabel);
    cmp(left, static_cast<std::uint32_t>(mostSteps));
    jl(exitFor(RE_Machine_Exit::slow), T_NEAR);
    mov(start, p);
    mov(at(offsetof(RE_Search_Registers, inEffect)), 0);
    mov(at(offsetof(RE_Search_Registers, written)), 0);
    if (facts.start.skipsSeeker) {
        dec(left);
    }
}

}  // namespace corvane_machine

#endif
