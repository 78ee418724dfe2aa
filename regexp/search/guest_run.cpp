// Sets aside what the interrupted search knows of its graph and puts it back. The state must be as it was, also after an
// exception, except for the tokens of a run that completed.
#include "regexp/search/guest_run.h"

#include "regexp/search/match_loop.h"

#include <utility>

RE_Guest_Run::RE_Guest_Run(RE_Search_Info& search, const RE_Graph_Facts& graph, const char16_t* position)
    : info(search), rejectEmpty(search.rejectEmpty) {
    if (isInAttempt()) {
        setAside();
    }
    info.prepare(graph);
    info.rejectEmpty = 0;
    if (!interrupted) {
        info.stopped = RE_Search_Outcome::noMatch;
        info.resetForStart(position);
    } else if (info.matchStart == nullptr) {
        info.matchStart = position;
    }
    outerBodies = info.bodies.size();
    scope.emplace(info);
}

RE_Guest_Run::~RE_Guest_Run() {
    while (info.bodies.size() > outerBodies) {  // an exception leaves them open
        info.closeBody(false);
    }
    if (!completed) {
        scope->undoWrites();
    }
    scope->leave();
    info.rejectEmpty = rejectEmpty;
    interrupted ? putBack() : forget();
}

// A scan that was broken off may have led to an end too early.
bool RE_Guest_Run::run(const RE_Node* node, std::size_t& pos) {
    completed = runMatchLoop(info, node, pos) && !info.wasInterrupted();
    return completed;
}

// A search tells by its graph; one by hand, without a graph, by what it left open.
bool RE_Guest_Run::isInAttempt() const {
    return info.facts != nullptr || info.backtrack.top >= 0 || info.scopes > 0 || info.requiredEnd != nullptr;
}

// The trail refers to registers by their numbers, so the run works on these, and they are copied.
void RE_Guest_Run::setAside() {
    interrupted = Knowledge{info.facts,
                            info.registers,
                            std::move(info.runs),
                            std::move(info.barren),
                            std::exchange(info.knowsSubject, false),
                            info.leadingRun,
                            std::move(info.memo),
                            std::move(info.idleMemo),
                            info.memoCountdown,
                            std::move(info.profile),
                            std::exchange(info.inquiry, {})};
}

void RE_Guest_Run::putBack() {
    info.facts = interrupted->facts;
    std::copy(interrupted->registers.begin(), interrupted->registers.end(), info.registers.begin());
    info.runs = std::move(interrupted->runs);
    info.barren = std::move(interrupted->barren);
    info.knowsSubject = interrupted->knowsSubject;
    info.leadingRun = interrupted->leadingRun;
    info.memo = std::move(interrupted->memo);
    info.idleMemo = std::move(interrupted->idleMemo);
    info.memoCountdown = interrupted->memoCountdown;
    info.profile = std::move(interrupted->profile);
    info.inquiry = interrupted->inquiry;
}

// The graph may be gone before the state is used again.
void RE_Guest_Run::forget() {
    info.forgetSubject();
    info.facts = nullptr;
    info.profile.reset();
}
