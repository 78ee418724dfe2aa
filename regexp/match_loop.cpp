#include "regexp/match_loop.h"

#include "regexp/inspect/loop_watch.h"
#include "regexp/nodes/node.h"
#include "regexp/search_info.h"

namespace {

/// Where to go on after a node failed: its fail target, unless the node named another way.
const RE_Node* afterFailure(const RE_Node* node, RE_Search_Info& info) {
    if (info.redirected) {
        info.redirected = false;
        return info.redirection;
    }
    return node->failNode();
}

template <class Watch>
const RE_Node* endBody(RE_Search_Info& info, bool completed, std::size_t& pos, Watch& watch) {
    const RE_Node* const owner = info.bodies.back().node;
    watch.begin(pos);
    const RE_Node* const following = owner->bodyEnded(completed, pos, info);
    watch.bodyEnded(owner, pos, completed);
    return following;
}

/// Takes up the most recent choice of the innermost body, or ends that body. Null when the whole run has failed.
template <class Watch>
const RE_Node* backtrack(RE_Search_Info& info, std::size_t& pos, std::size_t floor, Watch& watch) {
    for (;;) {
        const RE_Node* node = nullptr;
        watch.begin(pos);
        if (const RE_Backtrack_Record* record = info.popChoice()) {
            const RE_Node* const chooser = record->node;
            watch.popped();
            node = chooser->resume(*record, pos, info);
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

template <class Watch>
bool run(RE_Search_Info& info, const RE_Node* node, std::size_t& pos, Watch watch) {
    const std::size_t floor = info.bodies.size();
    const char16_t* const subject = info.subjectBegin;
    while (node != nullptr && info.takeStep()) {
        const RE_Node* following = nullptr;
        watch.begin(pos);
        const bool matched = node->match(subject, pos, info);
        watch.stepped(node, pos, matched);
        if (!matched) {
            following = afterFailure(node, info);
        } else if (!node->isEnd()) {
            following = node->next();
        } else if (const RE_Node* text = node->includedText(info)) {
            following = text;
        } else if (info.bodies.size() == floor) {
            return true;
        } else {
            following = endBody(info, true, pos, watch);
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
