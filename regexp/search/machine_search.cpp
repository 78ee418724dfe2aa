// What a search does when its machine code returns.
//
// Each reason is dealt with by the code that the match loop uses for the same purpose (the root's seek, the
// loop's scan, the assertion's glance, the match loop itself), so that there is one definition of each. Then
// the code is run again.
//
// Trap: the code's registers are members of the search's state. What is called from here may change the
// position of the meter, but must leave `cursor`, `resume` and `runBegin` as the code expects to find them.
#include "regexp/search/machine_search.h"

#include "regexp/graph/graph_facts.h"
#include "regexp/graph/instruction.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/seeker.h"
#include "regexp/nodes/tokens.h"
#include "regexp/search/start_walk.h"
#include "regexp/search/unwatched_loop.h"
#include "regexp/state/search_info.h"

#include <algorithm>
#include <cstdint>

namespace {

/// One search, from the first return of the code to the end. Lives on the stack of one thread.
class Machine_Search {
public:
    Machine_Search(const RE_Graph_Facts& graphFacts, const RE_Machine_Code& machineCode,
                   const RE_Start_Walk& starts, RE_Search_Info& search)
        : facts(graphFacts), code(machineCode), walk(starts), info(search) {}

    /// Deals with one return after another, beginning with one for `reason`, until there is a match or no
    /// start is left.
    bool finish(RE_Machine_Exit reason, std::size_t& length) {
        while (reason != RE_Machine_Exit::noStart && !info.wasInterrupted()) {
            switch (reason) {
                case RE_Machine_Exit::noStart:  // ends the loop
                    __builtin_unreachable();
                case RE_Machine_Exit::glance:
                    decide();
                    break;
                case RE_Machine_Exit::longRun:
                    measureRun();
                    break;
                case RE_Machine_Exit::seek:
                    continueAt(code.attempt, walk.seekFrom(pastWhatWasSeen()));
                    info.allowedUpTo = allowedFrom(info.cursor);
                    break;
                case RE_Machine_Exit::matched:
                case RE_Machine_Exit::failed:
                case RE_Machine_Exit::slow:
                case RE_Machine_Exit::choice:
                case RE_Machine_Exit::leave:
                    if (finishAttempt(reason, length)) {
                        return true;
                    }
                    continueAfter(info.matchStart);
            }
            // Measuring a run may have taken many steps at once. The code checks its room before an attempt
            // and in loops only, so without enough of it the match loop has to finish this attempt.
            if (reason == RE_Machine_Exit::longRun && info.meter.room() < code.mostSteps) {
                if (finishAfterRun(length)) {
                    return true;
                }
                continueAfter(info.matchStart);
            }
            if (info.cursor == nullptr) {
                return false;
            }
            reason = code.run(info);
        }
        return false;
    }

private:
    /// Has the code continue at `place`. With `p` null the search is over.
    void continueAt(const void* place, const char16_t* p) {
        info.resume = place;
        info.cursor = p;
        info.askLeft = walk.roomUpToAsking();
    }

    /// The code was looking for a start and has seen none from `cursor` up to `runBegin`. Whole steps of that
    /// stretch are counted here and not scanned again by the root; what is left of it is, so that the sum of
    /// the steps is that of one scan by the root.
    const char16_t* pastWhatWasSeen() const {
        constexpr auto step = static_cast<std::ptrdiff_t>(RE_Step_Meter::unitsAStep);
        const std::ptrdiff_t units = std::min(info.runBegin, info.lastStart) - info.cursor;
        const std::ptrdiff_t looked = units - units % step;
        info.noteScan(static_cast<std::size_t>(looked));
        return info.cursor + looked;
    }

    /// The code finds further starts of the stretch by itself, by the units that a match can begin with.
    const char16_t* allowedFrom(const char16_t* start) const {
        const auto* const seeker = nodeAs<StringInnerSeeker>(facts.root);
        return seeker != nullptr && start != nullptr ? seeker->stretches.endAround(start, info) : nullptr;
    }

    /// Finishes an attempt that the code has brought as far as it could. True, with the length, where it
    /// matched.
    bool finishAttempt(RE_Machine_Exit reason, std::size_t& length) {
        const char16_t* p = info.cursor;
        bool matched = reason == RE_Machine_Exit::matched;
        takeTokensOver();
        if (reason == RE_Machine_Exit::slow) {
            info.resetForStart(p);
            matched = beginUnwatched(facts.start, info, p);
        } else if (reason == RE_Machine_Exit::leave) {
            info.enterLoop();
            matched = runUnwatchedLoop(info, info.instruction->node, p);
        } else if (reason == RE_Machine_Exit::choice) {
            info.enterLoop();
            loop().leaveChoice(p, info.handedLimit, info);
            matched = runUnwatchedLoop(info, info.instruction->next->node, p);
        }
        length = static_cast<std::size_t>(p - info.matchStart);
        return matched && !info.wasInterrupted();
    }

    /// The code keeps these two numbers in registers of its own while it runs.
    void takeTokensOver() {
        info.tokens->count = info.inEffect;
        info.tokens->written = info.written;
    }

    /// The code has no instructions for assertions of several tests: it reads the answer from `holds`.
    void decide() {
        const auto& assertion = static_cast<const RE_Lookaround_Assertion&>(*info.instruction->node);
        info.holds = assertion.glance(info.cursor, info) ? 1 : 0;
    }

    /// The loop whose run the code has returned for. A token around it is part of the same instruction.
    const RE_Consume& loop() const {
        const RE_Instruction& in = *info.instruction;
        const bool inToken = in.operation == RE_Operation::tokenRun;
        return static_cast<const RE_Consume&>(inToken ? *static_cast<const RE_Start_Token*>(in.node)->run
                                                      : *in.node);
    }

    /// Endless runs are remembered by the search when they are long, bounded ones are not.
    void measureRun() {
        const std::uint32_t most = info.instruction->most;
        const char16_t* const from = info.runBegin;
        // Compared as sizes: `from + most` could lie outside of the address space.
        const auto room = static_cast<std::size_t>(info.subjectEnd - from);
        info.cursor = most == RE_Instruction::noMaximum
                          ? loop().longRunEnd(from, info)
                          : loop().scanOn(from, from + std::min<std::size_t>(most, room), info);
    }

    /// Finishes an attempt in the match loop, from the measured run on. It does what the code would have done
    /// with the run: notes it, compares it with the minimum, and records the token around it.
    bool finishAfterRun(std::size_t& length) {
        const RE_Instruction& in = *info.instruction;
        const char16_t* p = info.cursor;
        const auto run = static_cast<std::size_t>(p - info.runBegin);
        if (in.flag && run < in.most) {
            info.leadingRun = {info.runBegin, p};
        }
        if (run < in.least) {
            return false;
        }
        takeTokensOver();
        info.enterLoop();
        if (in.operation == RE_Operation::tokenRun) {
            const auto& token = static_cast<const RE_Start_Token&>(*in.node);
            info.meter.count();
            info.recordToken(token.number, token.name, info.indexOf(info.runBegin), info.indexOf(p));
        }
        const bool matched = runUnwatchedLoop(info, in.next->node, p) && !info.wasInterrupted();
        length = static_cast<std::size_t>(p - info.matchStart);
        return matched;
    }

    /// Moves on from a failed start. The walk decides: it polls for interrupts and knows the starts that are
    /// hopeless.
    void continueAfter(const char16_t* failed) {
        const char16_t* const p = walk.lastInVain(failed);
        continueAt(code.nextStart, p != nullptr ? p + 1 : nullptr);
    }

    const RE_Graph_Facts& facts;
    const RE_Machine_Code& code;
    RE_Start_Walk walk;
    RE_Search_Info& info;
};

}  // namespace

bool goOnByMachineCode(const RE_Graph_Facts& facts, const RE_Machine_Code& code, RE_Machine_Exit first,
                       RE_Search_Info& info, std::size_t& length) {
    const RE_Start_Walk walk(facts, info.lastStart, info, info.askLeft);
    return Machine_Search(facts, code, walk, info).finish(first, length);
}
