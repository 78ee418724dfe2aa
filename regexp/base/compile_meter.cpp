// What happens between two intervals of work.
#include "regexp/base/compile_meter.h"

#include "host/interrupt.h"

#include <algorithm>
#include <utility>

RE_Compile_Meter::RE_Compile_Meter(const RE_Compile_Limits* compileLimits, RE_Compile_Monitor* somebody,
                                   bool asksHost)
    : limits(compileLimits), monitor(somebody), pollsHost(asksHost) {
    if (limits != nullptr) {
        mostNodes = limits->nodes;
    }
    if (limits != nullptr || monitor != nullptr || pollsHost) {
        grant(0);
    }
}

void RE_Compile_Meter::grant(std::uint64_t spent) {
    const std::uint64_t most = limits != nullptr ? limits->work : unasked;
    const std::uint64_t more = std::min(interval, most - std::min(most, spent));
    granted = spent + more;
    left = static_cast<std::int64_t>(more);
}

// The budget is met exactly, as no interval reaches beyond it.
void RE_Compile_Meter::pass() {
    const std::uint64_t spent = work();
    ask();
    if (limits != nullptr && spent > limits->work) {
        throw RE_Compile_Stopped{RE_Compile_Outcome::workSpent};
    }
    grant(spent);
}

void RE_Compile_Meter::refuseNodes() {
    throw RE_Compile_Stopped{RE_Compile_Outcome::nodesExceeded};
}

void RE_Compile_Meter::ask() {
    if (const RE_Compile_Outcome outcome = askAll(); outcome != RE_Compile_Outcome::compiled) {
        throw RE_Compile_Stopped{outcome};
    }
}

RE_Compile_Outcome RE_Compile_Meter::askAll() {
    if (pollsHost && utInterruptState::IsInterruptPending()) {
        return RE_Compile_Outcome::interrupted;
    }
    if (limits != nullptr) {
        const RE_Compile_Outcome outcome = limits->askOutside();
        if (outcome != RE_Compile_Outcome::compiled) {
            return outcome;
        }
    }
    if (monitor == nullptr) {
        return RE_Compile_Outcome::compiled;
    }
    const std::uint64_t now = work();
    return monitor->goesOn(now - std::exchange(told, now));
}

void RE_Compile_Meter::finish() {
    if (monitor != nullptr) {
        ask();
    }
}

void RE_Compile_Meter::admit(const char16_t* text, std::size_t units) {
    begin = text;
    unitCount = units;
    if (limits != nullptr && units > limits->units) {
        place = static_cast<std::size_t>(limits->units);
        throw RE_Compile_Stopped{RE_Compile_Outcome::unitsExceeded};
    }
}
