// Watching a search from outside, step by step.
#pragma once

#include "regexp/state/search_info.h"

#include <cstddef>
#include <cstdint>

enum class RE_Trace_Kind : std::uint8_t {
    seek,    ///< the root looked for the next start, from `from`; `to` is what it found
    start,   ///< an attempt begins at `from`
    step,    ///< `node` was asked at `from` and, when it matched, led to `to`
    push,    ///< a choice of `node` was left at `from`
    refuse,  ///< `node` offered a state that had been tried before
    pop,     ///< the choice of `node` left at `from` was taken up again
    body,    ///< the closed body of `node` ended at `from`; `to` is where matching goes on
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

/// Is given every event in the order in which they happen, with the search as it is then. Must not change it.
class CORVANE_REGEXP_EXPORT RE_Observer {
public:
    virtual ~RE_Observer();
    virtual void observe(const RE_Trace_Event& event, const RE_Search_Info& search) = 0;
};

inline void tellSeek(RE_Search_Info& info, const RE_Node* root, const char16_t* from, const char16_t* found) {
    if (info.observer != nullptr) {
        const std::size_t to = found != nullptr ? info.indexOf(found) : info.subjectLength();
        info.observer->observe({RE_Trace_Kind::seek, root, info.indexOf(from), to, found != nullptr}, info);
    }
}

inline void tellStart(RE_Search_Info& info, const char16_t* p) {
    if (info.observer != nullptr) {
        info.observer->observe({RE_Trace_Kind::start, nullptr, info.indexOf(p), info.indexOf(p), true}, info);
    }
}

inline void tellFinish(RE_Search_Info& info, const char16_t* p, std::size_t length, bool matched) {
    if (info.observer != nullptr) {
        const std::size_t start = info.indexOf(p);
        info.observer->observe({RE_Trace_Kind::finish, nullptr, start, start + length, matched}, info);
    }
}
