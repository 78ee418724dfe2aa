// Chooses the loop that runs a graph, and the visits that no direct step covers: the protocol of virtual functions.
#include "regexp/search/match_loop.h"

#include "regexp/search/unwatched_loop.h"
#include "regexp/search/watched_loop.h"
#include "regexp/state/search_info.h"

bool runMatchLoop(RE_Search_Info& info, const RE_Node* node, std::size_t& pos) {
    if (info.observer != nullptr) {
        return runWatchedLoop(info, node, pos);
    }
    const char16_t* p = info.subjectBegin + pos;
    const bool completed = runUnwatchedLoop(info, node, p);
    pos = completed ? info.indexOf(p) : pos;
    return completed;
}

RE_Step visitByProtocol(const RE_Node* node, const char16_t* p, std::size_t floor, RE_Search_Info& info,
                        bool& isOver) {
    std::size_t pos = info.indexOf(p);
    const bool matched = node->match(info.subjectBegin, pos, info);
    p = info.subjectBegin + pos;
    if (!matched) {
        return {orRedirected(node->failNode(), info), p};
    }
    if (!node->isEnd()) {
        return {orRedirected(node->next(), info), p};
    }
    if (const RE_Node* text = node->includedText(info)) {
        return {text, p};
    }
    isOver = info.bodies.size() == floor;
    return isOver ? RE_Step{nullptr, p} : endInnermostBody(true, p, info);
}

RE_Step endInnermostBody(bool completed, const char16_t* p, RE_Search_Info& info) {
    std::size_t pos = info.indexOf(p);
    const RE_Node* const following = info.bodies.back().node->bodyEnded(completed, pos, info);
    return {following, info.subjectBegin + pos};
}

namespace {

RE_Step takeUp(const RE_Backtrack_Record& record, const char16_t* p, RE_Search_Info& info) {
    const RE_Node* const chooser = record.node;
    std::size_t pos = info.indexOf(p);
    const RE_Node* following = nullptr;
    switch (chooser->kind) {
        case RE_Node_Kind::split:
            following = static_cast<const RE_Split*>(chooser)->RE_Split::resume(record, pos, info);
            break;
        case RE_Node_Kind::dispatch:
            following = static_cast<const RE_Dispatch*>(chooser)->RE_Dispatch::resume(record, pos, info);
            break;
        case RE_Node_Kind::other:
        case RE_Node_Kind::end:
        case RE_Node_Kind::literal:
        case RE_Node_Kind::foldedLiteral:
        case RE_Node_Kind::range:
        case RE_Node_Kind::namedClass:
        case RE_Node_Kind::unitClass:
        case RE_Node_Kind::dotLine:
        case RE_Node_Kind::string:
        case RE_Node_Kind::run:
        case RE_Node_Kind::literalSet:
        case RE_Node_Kind::startToken:
        case RE_Node_Kind::endToken:
        case RE_Node_Kind::matchToken:
        case RE_Node_Kind::lineStart:
        case RE_Node_Kind::lineEnd:
        case RE_Node_Kind::textStart:
        case RE_Node_Kind::textEnd:
        case RE_Node_Kind::glance:
        case RE_Node_Kind::wordStart:
        case RE_Node_Kind::wordEnd:
        case RE_Node_Kind::passage:
            following = chooser->resume(record, pos, info);
    }
    return {following, info.subjectBegin + pos};
}

}  // namespace

RE_Step goBack(const char16_t* p, std::size_t floor, RE_Search_Info& info) {
    RE_Step step{nullptr, p};
    while (step.node == nullptr) {
        if (const RE_Backtrack_Record* record = info.popChoice()) {
            step = takeUp(*record, step.p, info);
        } else if (info.wasInterrupted() || info.bodies.size() == floor) {
            break;
        } else {
            step = endInnermostBody(false, step.p, info);
        }
    }
    return step;
}
