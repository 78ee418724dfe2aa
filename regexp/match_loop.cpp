#include "regexp/match_loop.h"

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

/// Takes up the most recent choice of the innermost body, or ends that body. Null when the whole run has failed.
const RE_Node* backtrack(RE_Search_Info& info, std::size_t& pos, std::size_t floor) {
    for (;;) {
        const RE_Node* node = nullptr;
        if (const RE_Backtrack_Record* record = info.popChoice()) {
            node = record->node->resume(*record, pos, info);
        } else if (info.wasInterrupted() || info.bodies.size() == floor) {
            return nullptr;
        } else {
            node = info.bodies.back().node->bodyEnded(false, pos, info);
        }
        if (node != nullptr) {
            return node;
        }
    }
}

}  // namespace

bool runMatchLoop(RE_Search_Info& info, const RE_Node* node, std::size_t& pos) {
    const std::size_t floor = info.bodies.size();
    const char16_t* const subject = info.subjectBegin;
    while (node != nullptr) {
        const RE_Node* following = nullptr;
        if (!node->match(subject, pos, info)) {
            following = afterFailure(node, info);
        } else if (!node->isEnd()) {
            following = node->next();
        } else if (const RE_Node* text = node->includedText(info)) {
            following = text;
        } else if (info.bodies.size() == floor) {
            return true;
        } else {
            following = info.bodies.back().node->bodyEnded(true, pos, info);
        }
        node = following != nullptr ? following : backtrack(info, pos, floor);
    }
    while (info.bodies.size() > floor) {
        info.closeBody(false);
    }
    return false;
}
