// Tells the observer of a search, where there is one, what happens between attempts.
#pragma once

#include "regexp/search/observer.h"
#include "regexp/state/search_info.h"

#include <cstddef>

/// `found` is null when no start is left; the event then reaches to the end of the subject.
inline void tellSeek(RE_Search_Info& info, const RE_Node* root, const char16_t* from, const char16_t* found) {
    if (info.observer != nullptr) {
        const std::size_t to = found != nullptr ? info.indexOf(found) : info.subjectLength();
        info.observer->observe({RE_Trace_Kind::seek, root, info.indexOf(from), to, found != nullptr}, info);
    }
}

/// An attempt begins at `p`.
inline void tellStart(RE_Search_Info& info, const char16_t* p) {
    if (info.observer != nullptr) {
        info.observer->observe({RE_Trace_Kind::start, nullptr, info.indexOf(p), info.indexOf(p), true}, info);
    }
}

/// The attempt that began at `p` is over. `length` is that of its match, whatever it is worth without one.
inline void tellFinish(RE_Search_Info& info, const char16_t* p, std::size_t length, bool matched) {
    if (info.observer != nullptr) {
        const std::size_t start = info.indexOf(p);
        info.observer->observe({RE_Trace_Kind::finish, nullptr, start, start + length, matched}, info);
    }
}
