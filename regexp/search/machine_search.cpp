#include "regexp/search/machine_search.h"

#include "regexp/graph/graph_facts.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/tokens.h"
#include "regexp/program/instruction.h"
#include "regexp/state/search_info.h"
#include "regexp/search/start_walk.h"
#include "regexp/search/unwatched_loop.h"

#include <algorithm>
#include <cstdint>

namespace {

/// Does for the code what it returns for.
class Machine_Search {
public:
    Machine_Search(const RE_Graph_Facts& graphFacts, const RE_Start_Walk& starts, RE_Search_Info& search)
        : facts(graphFacts), code(*graphFacts.machineCode), walk(starts), info(search) {}

    /// Goes on behind a return for the reason given, until there is a match or an end.
    bool goOn(RE_Machine_Exit reason, std::size_t& length) {
        while (reason != RE_Machine_Exit::noStart && !info.wasInterrupted()) {
            switch (reason) {
                case RE_Machine_Exit::glance:
                    decide();
                    break;
                case RE_Machine_Exit::longRun:
                    measureRun();
                    break;
                case RE_Machine_Exit::seek:
                    goOnAt(code.attempt, walk.seekFrom(behindLookedAt()));
                    break;
                default:
                    if (finishAttempt(reason, length)) {
                        return true;
                    }
                    goOnBehind(info.matchStart);
            }
            // Behind a run many steps may have been taken at once: what follows it is for the match loop
            // then.
            if (reason == RE_Machine_Exit::longRun && info.meter.room() < code.mostSteps) {
                if (finishBehindRun(length)) {
                    return true;
                }
                goOnBehind(info.matchStart);
            }
            if (info.cursor == nullptr) {
                return false;
            }
            reason = code.run(info);
        }
        return false;
    }

private:
    void goOnAt(const void* place, const char16_t* p) {
        info.resume = place;
        info.cursor = p;
        info.askLeft = walk.roomUpToAsking();
    }

    /// The code was on its way to a start when it came to `runBegin`. What it has looked at counts for steps,
    /// as far as it makes whole ones, and is not looked at again.
    const char16_t* behindLookedAt() const {
        constexpr auto step = static_cast<std::ptrdiff_t>(RE_Step_Meter::unitsAStep);
        const std::ptrdiff_t units = std::min(info.runBegin, info.lastStart) - info.cursor;
        const std::ptrdiff_t looked = units - units % step;
        info.noteScan(static_cast<std::size_t>(looked));
        return info.cursor + looked;
    }

    /// How an attempt ends that the code has brought so far.
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
            loop().leaveChoice(p, info.choiceLimit, info);
            matched = runUnwatchedLoop(info, info.instruction->next->node, p);
        }
        length = static_cast<std::size_t>(p - info.matchStart);
        return matched && !info.wasInterrupted();
    }

    void takeTokensOver() {
        info.tokens->count = info.inEffect;
        info.tokens->written = info.written;
    }

    void decide() {
        const auto& assertion = static_cast<const RE_Lookaround_Assertion&>(*info.instruction->node);
        info.holds = assertion.glance(info.cursor, info) ? 1 : 0;
    }

    /// The loop of the instruction that the code is in.
    const RE_Consume& loop() const {
        const RE_Instruction& in = *info.instruction;
        const bool inToken = in.operation == RE_Operation::tokenRun;
        return static_cast<const RE_Consume&>(inToken ? *static_cast<const RE_Start_Token*>(in.node)->run
                                                      : *in.node);
    }

    void measureRun() {
        const std::uint32_t most = info.instruction->most;
        const char16_t* const from = info.runBegin;
        const auto room = static_cast<std::size_t>(info.subjectEnd - from);
        info.cursor = most == RE_Instruction::noMaximum
                          ? loop().longRunEnd(from, info)
                          : loop().scanOn(from, from + std::min<std::size_t>(most, room), info);
    }

    /// Ends an attempt from the run on that was measured.
    bool finishBehindRun(std::size_t& length) {
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

    void goOnBehind(const char16_t* failed) {
        const char16_t* const p = walk.lastInVain(failed);
        goOnAt(code.nextStart, p != nullptr ? p + 1 : nullptr);
    }

    const RE_Graph_Facts& facts;
    const RE_Machine_Code& code;
    RE_Start_Walk walk;
    RE_Search_Info& info;
};

}  // namespace

bool goOnByMachineCode(const RE_Graph_Facts& facts, const RE_Node* root, RE_Machine_Exit first,
                       RE_Search_Info& info, std::size_t& length) {
    const RE_Start_Walk walk(root, facts, info.lastStart, info, info.askLeft);
    return Machine_Search(facts, walk, info).goOn(first, length);
}
