// Watching a search from outside, step by step.
//
// An observed search runs the watched loop (watched_loop.h), uses neither program nor machine code nor
// automaton, and finds what an unobserved one finds.
#pragma once

#include "regexp/base/export.h"

#include <cstddef>
#include <cstdint>

class RE_Node;
class RE_Search_Info;

/// The events of a search are a seek where the root seeks, then those of an attempt, and so on. An attempt
/// goes from `start` to `finish`, with steps and their effects in between. The pushes and refusals of a visit
/// follow its `step`; the pops of one backtrack precede the step that it resumes at.
enum class RE_Trace_Kind : std::uint8_t {
    seek,    ///< the root looked for the next start, from `from`; `to` is what it found
    start,   ///< an attempt begins at `from`
    step,    ///< `node` was visited at `from` and, if it matched, led to `to`
    push,    ///< a choice of `node` was pushed, for the position `from`
    refuse,  ///< the memo refused a choice of `node`: its state had been tried before
    pop,     ///< the choice of `node` for `from` was popped
    body,    ///< the closed body of `node` ended at `from`; `to` is where matching continues
    finish   ///< the attempt that began at `from` is over and reached `to`
};

/// Positions are indexes in code units.
struct RE_Trace_Event {
    RE_Trace_Kind kind;
    const RE_Node* node;  ///< null for start and finish
    std::size_t from;
    std::size_t to;
    bool succeeded;  ///< seek: found; step: matched; body: completed; finish: a match
};

/// Receives every event in the order in which they happen, with the search as it is then. Must not change it.
/// May throw, which ends the search and passes through to its caller. The search lives on after the call, but
/// nodes of dynamic texts may be freed before it ends: an observer copies what it needs of a node.
class CORVANE_REGEXP_EXPORT RE_Observer {
public:
    virtual ~RE_Observer();
    virtual void observe(const RE_Trace_Event& event, const RE_Search_Info& search) = 0;
};
