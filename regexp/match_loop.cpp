#include "regexp/match_loop.h"

#include "regexp/direct_step.h"
#include "regexp/inspect/loop_watch.h"
#include "regexp/nodes/trivial.h"
#include "regexp/search_info.h"

namespace {

/// Where to go on after a node: `way`, unless the node named another one.
const RE_Node* orRedirected(const RE_Node* way, RE_Search_Info& info) {
    if (info.redirected) {
        info.redirected = false;
        return info.redirection;
    }
    return way;
}

template <class Watch>
const RE_Node* endBody(RE_Search_Info& info, bool completed, std::size_t& pos, Watch& watch) {
    const RE_Node* const owner = info.bodies.back().node;
    watch.begin(pos);
    const RE_Node* const following = owner->bodyEnded(completed, pos, info);
    watch.bodyEnded(owner, pos, completed);
    return following;
}

template <class Watch>
const RE_Node* takeUp(const RE_Node* chooser, const RE_Backtrack_Record& record, std::size_t& pos,
                      RE_Search_Info& info) {
    switch (Watch::watches ? RE_Node_Kind::other : chooser->kind) {
        case RE_Node_Kind::split:
            return static_cast<const RE_Split*>(chooser)->RE_Split::resume(record, pos, info);
        case RE_Node_Kind::dispatch:
            return static_cast<const RE_Dispatch*>(chooser)->RE_Dispatch::resume(record, pos, info);
        default:
            return chooser->resume(record, pos, info);
    }
}

/// Takes up the most recent choice of the innermost body, or ends that body. Null when the whole run has
/// failed.
template <class Watch>
const RE_Node* backtrack(RE_Search_Info& info, std::size_t& pos, std::size_t floor, Watch& watch) {
    if (info.backtrack.top < info.backtrack.base && info.bodies.size() == floor) {
        return nullptr;
    }
    for (;;) {
        const RE_Node* node = nullptr;
        watch.begin(pos);
        if (const RE_Backtrack_Record* record = info.popChoice()) {
            const RE_Node* const chooser = record->node;
            watch.popped();
            node = takeUp<Watch>(chooser, *record, pos, info);
            watch.resumed(chooser, pos);
        } else if (watch.popped(); info.wasInterrupted() || info.bodies.size() == floor) {
            return nullptr;
        } else {
            node = endBody(info, false, pos, watch);
        }
        if (node != nullptr) {
            return node;
        }
    }
}

/// What visiting a node by its virtual functions led to: the node to go on at (null: a choice has to be taken
/// up), or the end of the run.
struct Visit {
    const RE_Node* following;
    bool isOver = false;
};

template <class Watch>
Visit visit(const RE_Node* node, RE_Search_Info& info, std::size_t& pos, std::size_t floor, Watch& watch) {
    watch.begin(pos);
    const bool matched = node->match(info.subjectBegin, pos, info);
    watch.stepped(node, pos, matched);
    if (!matched) {
        return {orRedirected(node->failNode(), info)};
    }
    if (!node->isEnd()) {
        return {orRedirected(node->next(), info)};
    }
    if (const RE_Node* text = node->includedText(info)) {
        return {text};
    }
    if (info.bodies.size() == floor) {
        return {nullptr, true};
    }
    return {endBody(info, true, pos, watch)};
}

/// The same for the end of the pattern or of a body, when nobody watches.
Visit visitEnd(const RE_Node* node, RE_Search_Info& info, std::size_t& pos, std::size_t floor) {
    RE_No_Watch nobody(info);
    const auto& end = static_cast<const RE_End_Of_Tree&>(*node);
    if (end.continuation != nullptr) {
        return visit(node, info, pos, floor, nobody);
    }
    if (!end.completes(pos, info)) {
        return {nullptr};
    }
    return info.bodies.size() == floor ? Visit{nullptr, true} : Visit{endBody(info, true, pos, nobody)};
}

template <class Watch>
bool run(RE_Search_Info& info, const RE_Node* node, std::size_t& position, Watch watch) {
    const std::size_t floor = info.bodies.size();
    std::size_t pos = position;  // a copy that the compiler can keep in a register
    while (node != nullptr && info.takeStep()) {
        const RE_Node* following = nullptr;
        if (!Watch::watches && node->kind > RE_Node_Kind::end) {
            following = visitDirectly(node, pos, info);
        } else {
            const bool ends = !Watch::watches && node->kind == RE_Node_Kind::end;
            const Visit visited =
                ends ? visitEnd(node, info, pos, floor) : visit(node, info, pos, floor, watch);
            if (visited.isOver) {
                position = pos;
                return true;
            }
            following = visited.following;
        }
        node = following != nullptr ? following : backtrack(info, pos, floor, watch);
    }
    while (info.bodies.size() > floor) {
        info.closeBody(false);
    }
    return false;
}

}  // namespace

bool runMatchLoop(RE_Search_Info& info, const RE_Node* node, std::size_t& pos) {
    return info.observer == nullptr ? run(info, node, pos, RE_No_Watch(info))
                                    : run(info, node, pos, RE_Loop_Watch(info));
}
