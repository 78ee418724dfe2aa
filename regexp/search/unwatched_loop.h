// The match loop of searches that nobody observes. It stands in a header so that the search from start to
// start has it inside: most attempts are over after a few nodes.
#pragma once

#include "regexp/graph/graph_facts.h"
#include "regexp/search/direct_step.h"
#include "regexp/state/search_info.h"

/// Where to go on after a node: `way`, unless the node named another one.
inline const RE_Node* orRedirected(const RE_Node* way, RE_Search_Info& info) {
    if (info.redirected) {
        info.redirected = false;
        return info.redirection;
    }
    return way;
}

/// Takes up the most recent choice of the innermost body, or ends that body. No node when the run has failed.
RE_Step goBack(const char16_t* p, std::size_t floor, RE_Search_Info& info);

/// `runMatchLoop` without an observer, from `position` on, which is put behind a match. The automaton may have
/// found it.
[[gnu::always_inline]] inline bool runUnwatchedLoop(RE_Search_Info& info, const RE_Node* node,
                                                    const char16_t*& position) {
    const std::size_t floor = info.bodies.size();
    bool isOver = false;
    if (!info.countChoice()) {  // to begin here counts as one
        return info.inquiry.takeEnd(position);
    }
    RE_Step step{node, position};
    while (step.node != nullptr && info.takeStep()) {
        step = visit(step.node, step.p, floor, info, isOver);
        if (step.node != nullptr) {
            continue;
        }
        if (isOver) {
            position = step.p;
            return true;
        }
        if (info.backtrack.top >= info.backtrack.base || info.bodies.size() > floor) {
            step = goBack(step.p, floor, info);
        }
    }
    while (info.bodies.size() > floor) {
        info.closeBody(false);
    }
    return info.inquiry.takeEnd(position);
}

/// An attempt from its beginning on. A seeker is a step too, also where it is passed by.
[[gnu::always_inline]] inline bool beginUnwatched(const RE_Attempt_Start& start, RE_Search_Info& info,
                                                  const char16_t*& position) {
    return (!start.skipsSeeker || info.takeStep()) && runUnwatchedLoop(info, start.entry, position);
}
