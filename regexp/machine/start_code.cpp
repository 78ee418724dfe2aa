// The walk from start to start: what is due after a failed attempt, and the search for first units, for
// starts of lines and for prefixes. `literal_code.cpp` has the search for literals.
//
// Every way of finding a start has the same shape: `runBegin` moves ahead of `p`, a vector at a time, until
// it finds a candidate (`found`), has scanned as far as is worth it here (exit `seek`), or reaches the end
// (`nowhere`). The units between `p` and `runBegin` are counted as steps only then, as one scan by the root
// would count them.
//
// A finder may stop where no match begins, as an attempt follows. It must not pass over a place where one
// does.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/program_code.h"

#include "regexp/nodes/consume.h"
#include "regexp/nodes/seeker.h"
#include "regexp/state/step_meter.h"
#include "regexp/units/unit_set.h"

#include <algorithm>
#include <bit>
#include <optional>

namespace corvane_machine {

namespace {

// Units to steps is a shift: one bit less than from bytes.
constexpr int stepShift = std::countr_zero(RE_Step_Meter::unitsAStep);
// Starts are often near. A few units are tested before a vector is loaded; with masks the first vector costs
// less, so fewer are.
constexpr int tried = 4;  // one by one before vectors are
constexpr int triedBeforeMasks = 2;
constexpr int fewUnits = 24;  // of a stretch, before the root takes over
static_assert(fewUnits < RE_Step_Meter::unitsAStep);

const RE_Prefix_Scan* prefixesOf(const RE_Node* root) {
    const auto* const seeker = nodeAs<StringPrefixSeeker>(root);
    return seeker != nullptr ? seeker->finder.prefixScan() : nullptr;
}

/// The unit of a set that has one.
std::optional<char16_t> onlyUnit(const RE_Unit_Set* units) {
    if (units == nullptr) {
        return std::nullopt;
    }
    const RE_Unit_Ranges ranges(*units);
    const bool isOne = ranges.count == 1 && ranges.list[0].low == ranges.list[0].high;
    return isOne ? std::optional(ranges.list[0].low) : std::nullopt;
}

}  // namespace

Start_Code::Start_Code(const RE_Graph_Facts& graphFacts, const RE_Node* graphRoot,
                       std::span<std::byte> buffer, RE_Compile_Meter& meter)
    : Program_Code(graphFacts.program, graphFacts.keepsTokens, graphFacts.tuning.widestVectors, buffer,
                   meter),
      facts(graphFacts),
      root(graphRoot) {}

// A new search enters at the jump, past the test of `lastStart`, which its caller has made.
void Start_Code::emitStarts() {
    jmp(seekLabel, T_NEAR);
    emitFailed();
    emitNextStart();
    emitAttempt();
}

// Whoever runs the code does all else that is due after a failed attempt: a poll for interrupts each 2048th
// start, and the test whether the needed literals still follow. Both are tested first, before anything is
// counted, so that the search finds the registers as the attempt has left them.
void Start_Code::emitFailed() {
    L(failedLabel);
    Label& more = exitFor(RE_Machine_Exit::failed);
    // The same interval as in `RE_Search_Info::pollInterrupt`.
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

// As `RE_Consume::lastHopelessStart`, for runs that the attempt has measured: the starts within the run that
// a leading loop has taken are hopeless, as every end was tried from here. Where the attempt noted no run,
// the one of an endless loop has to be measured first, which is left to the search; a bounded one has reached
// its maximum then, and says nothing.
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
    // A bounded run is hopeless only where it is shorter than its minimum: no position in it begins a longer
    // one.
    shr(rax, 1);
    cmp(rax, static_cast<std::uint32_t>(loop->minimum));
    cmovb(p, other);
    L(unmeasured);
}

// Nothing begins past `lastStart`: the subject leaves no room for the shortest match.
void Start_Code::emitNextStart() {
    L(nextStartLabel);
    cmp(p, at(offsetof(RE_Search_Registers, lastStart)));
    ja(exitFor(RE_Machine_Exit::noStart), T_NEAR);
    L(seekLabel);
    if (facts.start.rootSeeks) {
        emitSeek();
    }
}

// Looks for a start from `p` on, by the finder of the pattern. A scan counts as many steps as one by the
// root. Finders that are not written out here return at once, and the root seeks each time.
void Start_Code::emitSeek() {
    const auto* const seeker = nodeAs<StringStringSeeker>(root);
    const std::optional<char16_t> alone = scansWideVectors ? onlyUnit(facts.start.units) : std::nullopt;
    // A single unit is looked for like a literal of that unit: two vectors at a time in place of one.
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
        const auto* const inner = nodeAs<StringInnerSeeker>(root);
        if (inner != nullptr && !inner->ofLines) {
            emitSeekWithin(*inner->first);
        } else {
            emitSeekByRoot();
        }
    }
}

// The root begins at `p`, as nothing has been scanned here.
void Start_Code::emitSeekByRoot() {
    mov(runBegin, p);
    jmp(exitFor(RE_Machine_Exit::seek), T_NEAR);
}

// Near starts in a stretch that the root has found, where one is followed by many that fail. So few units are looked at
// that no step is counted.
void Start_Code::emitSeekWithin(const RE_Unit_Set& units) {
    Label& again = fresh();
    Label& next = fresh();
    Label& found = fresh();
    Label& far = fresh();
    mov(stop, at(offsetof(RE_Search_Registers, allowedUpTo)));
    cmp(p, stop);
    ja(far, T_NEAR);
    mov(runBegin, p);
    lea(rax, ptr[p + fewUnits * static_cast<int>(sizeof(char16_t))]);
    cmp(stop, rax);
    cmova(stop, rax);
    loadTable(units);
    L(again);
    movzx(eax, word[runBegin]);
    unlessIn(units, next, true, true);
    jmp(found, T_NEAR);
    L(next);
    add(runBegin, 2);
    cmp(runBegin, stop);
    jbe(again, T_NEAR);
    L(far);
    emitSeekByRoot();
    L(found);
    mov(p, runBegin);
    cmp(p, at(offsetof(RE_Search_Registers, lastStart)));
    ja(exitFor(RE_Machine_Exit::noStart), T_NEAR);
}

// Moves on to the start at `runBegin`, and counts the units up to it.
void Start_Code::emitFound() {
    mov(rax, runBegin);
    sub(rax, p);
    shr(rax, 1 + stepShift);
    sub(left, rax);
    mov(p, runBegin);
    cmp(p, at(offsetof(RE_Search_Registers, lastStart)));
    ja(exitFor(RE_Machine_Exit::noStart), T_NEAR);
}

// Ends the search from `nowhere`, where no start was found up to the end. The scan counts all the same.
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

// Begins an attempt: tokens are emptied by their numbers alone, the slots are not touched. The visit of a
// seeker is a step, although the attempt begins after it.
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

// A position needs `reach` units after itself: with fewer there is no match at it.
void Start_Code::emitMaskAhead(std::size_t reach, std::uint32_t most, Label& nowhere) {
    lea(rax, ptr[end - static_cast<int>(reach * sizeof(char16_t))]);
    sub(rax, runBegin);
    jbe(nowhere, T_NEAR);
    emitMask(most);
}

void Start_Code::emitRoomForVector(std::size_t reach, Label& tail) {
    lea(rax, ptr[runBegin + static_cast<int>((vectorUnits + reach) * sizeof(char16_t))]);
    cmp(rax, end);
    ja(tail, T_NEAR);
}

/// Continues with the next vector of units, or leaves the rest of a long way to the root.
void Start_Code::emitNextVector(Label& again) {
    add(runBegin, static_cast<int>(vectorUnits * sizeof(char16_t)));
    cmp(runBegin, stop);
    jb(again, T_NEAR);
    jmp(exitFor(RE_Machine_Exit::seek), T_NEAR);
}

// Goes to `found` at the first unit from `runBegin` on that is in the set. Tests `most` units, or all up to
// the end where `most` is 0.
void Start_Code::emitOneByOne(const RE_Unit_Set& units, int most, Label& found, Label& nowhere) {
    Label& again = fresh();
    loadTable(units);
    L(again);
    for (int i = 0; i < std::max(most, 1); ++i) {
        Label& next = fresh();
        cmp(runBegin, end);
        jae(nowhere, T_NEAR);
        movzx(eax, word[runBegin]);
        unlessIn(units, next, true, true);
        jmp(found, T_NEAR);
        L(next);
        add(runBegin, 2);
    }
    if (most == 0) {
        jmp(again, T_NEAR);
    }
}

// A few units one by one, then vectors, then what is left before the end. In mixed sets units above the table
// are candidates that have to be tested: one that is no member is rare, and left to the root's scan.
void Start_Code::emitSeekUnits(const RE_Unit_Set& units) {
    Label& found = fresh();
    Label& nowhere = fresh();
    mov(runBegin, p);
    emitOneByOne(units, masksVectors ? triedBeforeMasks : tried, found, nowhere);
    if (scansVectors) {
        Label& tail = fresh();
        emitVectors(0, [&] {
            emitMembersAt(runBegin, units, tail);
            if (kindOf(units) == Kind::mixed) {
                or_(eax, ecx);
            }
        });
        if (kindOf(units) == Kind::mixed) {
            movzx(eax, word[runBegin]);
            unlessIn(units, exitFor(RE_Machine_Exit::seek));
        }
        jmp(found, T_NEAR);
        L(tail);
        if (masksVectors) {
            emitMaskedTail(0, nowhere, [&] {
                emitMaskedMembers(runBegin, units);
                if (kindOf(units) == Kind::mixed) {
                    or_(eax, ecx);
                }
            });
        }
        emitOneByOne(units, 0, found, nowhere);
    } else {
        jmp(exitFor(RE_Machine_Exit::seek), T_NEAR);
    }
    emitNowhere(nowhere);
    L(found);
    emitFound();
}

// A line begins at the beginning of the text and after each line feed. So the scan looks for the line feed,
// and the start is one unit past it; that may be the end of the subject.
void Start_Code::emitSeekLineStart() {
    Label& tail = fresh();
    Label& found = fresh();
    Label& nowhere = fresh();
    mov(runBegin, p);
    cmp(p, begin);
    jbe(found, T_NEAR);
    // `p` itself may begin a line.
    cmp(word[p - 2], std::uint32_t{u'\n'});
    je(found, T_NEAR);
    emitVectors(1, [&] {
        emitRoomForVector(0, tail);
        emitEqualUnits(runBegin, u'\n', xmm0);
        pmovmskb(eax, xmm0);
    });
    jmp(found, T_NEAR);
    L(tail);
    if (masksVectors) {
        emitMaskedTail(0, nowhere, [&] { emitMaskedRange(runBegin, {u'\n', u'\n'}); });
    }
    Label& each = fresh();
    L(each);
    cmp(runBegin, end);
    jae(nowhere, T_NEAR);
    add(runBegin, 2);
    cmp(word[runBegin - 2], std::uint32_t{u'\n'});
    jne(each, T_NEAR);
    emitNowhere(nowhere);
    L(found);
    emitFound();
}

// Near the subject's end the positions are tested one by one, as `RE_Prefix_Scan::mayStandAt` does, or by one
// masked vector.
void Start_Code::emitSeekPrefixes(const RE_Prefix_Scan& scan) {
    Label& tail = fresh();
    Label& miss = fresh();
    Label& found = fresh();
    Label& nowhere = fresh();
    const int reach = static_cast<int>(scan.reach() * sizeof(char16_t));
    mov(runBegin, p);
    emitVectors(0, [&] {
        // A prefix is tested at places up to `reach` units past its position.
        emitRoomForVector(scan.reach(), tail);
        emitPrefixes(runBegin, scan);
    });
    jmp(found, T_NEAR);
    L(miss);
    add(runBegin, 2);
    L(tail);
    if (masksVectors) {
        emitMaskedTail(scan.reach(), nowhere, [&] { emitMaskedPrefixes(runBegin, scan); });
    } else {
        lea(rax, ptr[runBegin + reach]);
        cmp(rax, end);
        jae(nowhere, T_NEAR);
        emitPrefixTest(scan, miss);
    }
    jmp(found, T_NEAR);
    emitNowhere(nowhere);
    L(found);
    emitFound();
}

/// Goes to `unfit` unless a prefix may begin at `runBegin`. `stop` holds the bits of the prefixes that are
/// still possible. Trap: `other` and `stop` are in use here, so the caller's limit in `stop` is lost: no
/// vector may follow.
void Start_Code::emitPrefixTest(const RE_Prefix_Scan& scan, Label& unfit) {
    // At first each prefix is possible; each place leaves those that allow its unit.
    mov(stop.cvt32(), 0xFF);
    for (std::size_t place = 0; place < scan.depth; ++place) {
        movzx(eax, word[runBegin + static_cast<int>(scan.distance[place] * sizeof(char16_t))]);
        if (scan.saturates) {
            mov(ecx, 0xFF);
            cmp(eax, ecx);
            cmova(eax, ecx);
        }
        movzx(ebp, al);
        and_(eax, 0x0F);
        shr(ebp, 4);
        lea(other, ptr[rip + prefixTable(scan.low[place])]);
        movzx(eax, byte[other + rax]);
        and_(stop.cvt32(), eax);
        lea(other, ptr[rip + prefixTable(scan.high[place])]);
        movzx(eax, byte[other + spare]);
        and_(stop.cvt32(), eax);
        jz(unfit, T_NEAR);
    }
}

}  // namespace corvane_machine

#endif
