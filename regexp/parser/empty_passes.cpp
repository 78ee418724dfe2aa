// The numbers behind the three rules: how many empty passes can differ, and how many states a nest of loops
// can have.
#include "regexp/parser/empty_passes.h"

#include <algorithm>

namespace {

// Up to so many passes over the empty text are simply made. Beyond them rule 3 applies, which is not exact,
// so the number is part of what docs/execution-model.md promises.
constexpr std::uint64_t fewPasses = 512;

// A pattern that calls the host does so as the graph without a memo would, which tries what follows again
// for every choice of the passes that consume. So fewer are made, and how many depends on the pattern
// alone.
constexpr std::uint64_t fewPassesOfHost = 256;

// States (positions, counts and tokens) that a nest of loops may reach near the subject's end while all
// passes are made.
constexpr std::uint64_t mostStates = std::uint64_t{1} << 20;
// Where products saturate: more than the limit is all that anybody needs to know, and it fits 32 bits.
constexpr std::uint64_t tooMany = mostStates + 1;

std::uint64_t times(std::uint64_t a, std::uint64_t b) {
    return a != 0 && b > tooMany / a ? tooMany : std::min(a * b, tooMany);
}

// How many empty passes at one place may differ in what they record.
//
// All that take one path through the body record the same tokens, however many they are. With several paths
// the last pass along each matters, and there are no more of them to tell apart than tokens. Two more are
// on the safe side: a pass too many costs time only. Without tokens one pass is like the next.
//
// 0 means that there is no such number: passes that read tokens and record some may take turns without end.
// It does not help that they are different tokens, as closing one puts those below it in effect and those
// above out of effect. Where the host is called, each pass has an effect of its own.
std::uint64_t differingPasses(const RE_Syntax& body, bool callsHost) {
    if (callsHost || (body.reads && body.written > 0)) {
        return 0;
    }
    return body.written > 0 ? body.written + std::uint64_t{2} : 1;
}

/// An upper bound of the states of a nest of loops, that many units before the subject's end. `all`: the
/// passes if none is left out. `nested`: how deeply guarded loops nest. Never falls as `units` grow, on
/// which the bisection below relies.
std::uint64_t statesOf(std::uint64_t units, std::uint64_t all, std::uint64_t perPlace, unsigned nested) {
    const std::uint64_t places = units + 1;
    if (perPlace == 0) {
        return times(times(places, all), times(places, places));  // a token is two places
    }
    std::uint64_t states = 1;
    for (unsigned loop = 0; loop < nested && states < all; ++loop) {
        states = times(states, times(perPlace, places));
    }
    return times(places, std::min(states, all));
}

// The least number of units at which there are too many states.
std::uint64_t exactUnitsOf(std::uint64_t all, std::uint64_t perPlace, unsigned nested) {
    std::uint64_t least = 0;
    for (std::uint64_t most = mostStates; least < most;) {
        const std::uint64_t middle = least + (most - least) / 2;
        if (statesOf(middle, all, perPlace, nested) <= mostStates) {
            least = middle + 1;
        } else {
            most = middle;
        }
    }
    return least;
}

}  // namespace

RE_Empty_Passes planEmptyPasses(const RE_Syntax_Tree& tree, std::uint32_t index, const RE_Repeat_Plan& plan,
                                bool callsHost) {
    const RE_Syntax& it = tree[index];
    const RE_Syntax& body = tree[it.firstChild];
    // Passes that always consume never match the empty text. A plain choice of a body that may be empty
    // takes what its body takes.
    if (!plan.guarded) {
        const bool isEmpty = body.least == 0;
        return {isEmpty ? body.emptyPasses : 1, isEmpty ? body.allPasses : 1, false, false, 0, 0, 0};
    }
    const std::uint64_t required = std::max<std::uint64_t>(plan.minimum, 1);
    // After the one required pass of `x+` an optional one is tried, which may take as many.
    const std::uint64_t tried = plan.minimum == 1 && plan.maximum != 1 ? 2 : required;
    const std::uint64_t few = callsHost ? fewPassesOfHost : fewPasses;
    const std::uint64_t perPlace = differingPasses(body, callsHost);
    RE_Empty_Passes passes{};
    passes.all = static_cast<std::uint32_t>(times(body.allPasses, tried));
    passes.endLoop = times(body.emptyPasses, required) > few;
    // Optional passes that follow double the passes at each level of a nest. They stop where the body alone
    // takes too many.
    passes.optionalFollow = passes.endLoop && body.emptyPasses <= few;
    const std::uint64_t made = !passes.endLoop ? tried : passes.optionalFollow ? 2 : 1;
    passes.taken = static_cast<std::uint32_t>(times(body.emptyPasses, made));
    passes.exactUnits = passes.endLoop && !callsHost ? exactUnitsOf(passes.all, perPlace, it.guards) : 0;
    passes.perUnit = body.most > 0 ? perPlace : 0;
    passes.atEnd = perPlace;
    return passes;
}
