// One step of the match loop for the nodes that most steps visit: the same functions that `RE_Node` declares,
// called without looking them up. What a node does is written once, in its class.
#pragma once

#include "regexp/nodes/anchors.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/split.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/units.h"
#include "regexp/state/search_info.h"

/// What visiting a node led to: the node to go on at (null: a choice has to be taken up), and where. By value,
/// so that the loop keeps both in registers.
struct RE_Step {
    const RE_Node* node;
    const char16_t* p;
};

/// Visits a node of the class `Unit`.
template <class Unit>
RE_Step visitUnit(const RE_Node* node, const char16_t* p, const RE_Search_Info& info) {
    const auto& test = static_cast<const Unit&>(*node);
    if (p < info.subjectEnd && test.Unit::matchesUnit(*p)) {
        return {test.nextNode, p + 1};
    }
    return {test.failTarget, p};
}

/// Visits a node of the class `Leaf`, which goes on at `failed` when it fails.
template <class Leaf>
RE_Step visitLeaf(const RE_Node* node, const char16_t* p, RE_Search_Info& info,
                  const RE_Node* failed = nullptr) {
    const auto& leaf = static_cast<const Leaf&>(*node);
    std::size_t pos = info.indexOf(p);
    const bool matched = leaf.Leaf::match(info.subjectBegin, pos, info);
    return {matched ? leaf.nextNode : failed, info.subjectBegin + pos};
}

/// Visits a test of a position.
template <class Anchor>
RE_Step visitAnchor(const RE_Node* node, const char16_t* p, const RE_Search_Info& info) {
    const auto& anchor = static_cast<const Anchor&>(*node);
    return {anchor.Anchor::holdsAt(p, info) ? anchor.nextNode : nullptr, p};
}

/// Visits a loop over one unit. Most give nothing back and are over after a few units.
inline RE_Step visitRun(const RE_Node* node, const char16_t* p, RE_Search_Info& info) {
    const auto& loop = static_cast<const RE_Consume&>(*node);
    if (!loop.possessive || loop.lazy) {
        return visitLeaf<RE_Consume>(node, p, info);
    }
    const std::uint64_t left = static_cast<std::uint64_t>(info.subjectEnd - p);
    const char16_t* const limit = p + std::min(left, loop.maximum);
    const char16_t* end = loop.shortRunEnd(p, limit);
    if (end == nullptr) {
        end = loop.maximum == RE_Consume::noMaximum ? loop.longRunEnd(p, info) : loop.scanOn(p, limit, info);
    }
    const auto length = static_cast<std::uint64_t>(end - p);
    if (loop.leads && length < loop.maximum) {
        info.leadingRun = {p, end};
    }
    return {length >= loop.minimum ? loop.nextNode : nullptr, end};
}

/// Visits the start of a token. One that holds such a loop and nothing else is gone through at once, for the
/// three steps that it is.
inline RE_Step visitStartToken(const RE_Node* node, const char16_t* p, RE_Search_Info& info) {
    const auto& start = static_cast<const RE_Start_Token&>(*node);
    if (start.run == nullptr || !info.meter.hasRoom(2)) {
        return visitLeaf<RE_Start_Token>(node, p, info);
    }
    info.meter.count();
    const RE_Step end = visitRun(start.run, p, info);
    if (end.node == nullptr) {
        return end;
    }
    info.meter.count();
    info.recordToken(start.number, start.name, info.indexOf(p), info.indexOf(end.p));
    return {end.node->nextNode, end.p};
}

/// Visits a node by its virtual functions. Bodies from `floor` on were opened by this run, which `isOver` when
/// its last end was reached.
RE_Step visitByProtocol(const RE_Node* node, const char16_t* p, std::size_t floor, RE_Search_Info& info,
                        bool& isOver);
RE_Step endInnermostBody(bool completed, const char16_t* p, RE_Search_Info& info);

/// Visits the end of the pattern or of a body.
inline RE_Step visitEnd(const RE_Node* node, const char16_t* p, std::size_t floor, RE_Search_Info& info,
                        bool& isOver) {
    const auto& end = static_cast<const RE_End_Of_Tree&>(*node);
    if (end.continuation != nullptr) {
        return visitByProtocol(node, p, floor, info, isOver);
    }
    if (!end.completes(p, info)) {
        return {nullptr, p};
    }
    isOver = info.bodies.size() == floor;
    return isOver ? RE_Step{nullptr, p} : endInnermostBody(true, p, info);
}

/// Visits any node at `p`.
[[gnu::always_inline]] inline RE_Step visit(const RE_Node* node, const char16_t* p, std::size_t floor,
                                            RE_Search_Info& info, bool& isOver) {
    switch (node->kind) {
        case RE_Node_Kind::other:
            return visitByProtocol(node, p, floor, info, isOver);
        case RE_Node_Kind::end:
            return visitEnd(node, p, floor, info, isOver);
        case RE_Node_Kind::literal:
            return visitUnit<RE_Natural>(node, p, info);
        case RE_Node_Kind::foldedLiteral:
            return visitUnit<RE_Natural_I>(node, p, info);
        case RE_Node_Kind::range:
            return visitUnit<RE_Range>(node, p, info);
        case RE_Node_Kind::namedClass:
            return visitUnit<RE_Escaped_Set>(node, p, info);
        case RE_Node_Kind::unitClass:
            return visitUnit<RE_Unit_Class>(node, p, info);
        case RE_Node_Kind::dotLine:
            return visitUnit<RE_Dot_Line>(node, p, info);
        case RE_Node_Kind::string:
            return visitLeaf<RE_String>(node, p, info);
        case RE_Node_Kind::run:
            return visitRun(node, p, info);
        case RE_Node_Kind::split:
            return visitLeaf<RE_Split>(node, p, info);
        case RE_Node_Kind::dispatch:
            return {static_cast<const RE_Dispatch*>(node)->choose(p, info), p};
        case RE_Node_Kind::literalSet:
            return visitLeaf<RE_Literal_Set>(node, p, info);
        case RE_Node_Kind::startToken:
            return visitStartToken(node, p, info);
        case RE_Node_Kind::endToken:
            return visitLeaf<RE_End_Token>(node, p, info);
        case RE_Node_Kind::matchToken:
            return visitLeaf<RE_Match_Token>(node, p, info,
                                             static_cast<const RE_Match_Token*>(node)->failTarget);
        case RE_Node_Kind::lineStart:
            return visitAnchor<RE_Start_Line>(node, p, info);
        case RE_Node_Kind::lineEnd:
            return visitAnchor<RE_End_Line>(node, p, info);
        case RE_Node_Kind::textStart:
            return visitAnchor<RE_Start_String>(node, p, info);
        case RE_Node_Kind::textEnd:
            return visitAnchor<RE_End_String>(node, p, info);
        case RE_Node_Kind::glance: {
            const auto& test = static_cast<const RE_Lookaround_Assertion&>(*node);
            return {test.glance(p, info) ? test.nextNode : test.failTarget, p};
        }
        case RE_Node_Kind::wordStart:
            return visitAnchor<RE_Start_Word>(node, p, info);
        case RE_Node_Kind::wordEnd:
            return visitAnchor<RE_End_Word>(node, p, info);
        case RE_Node_Kind::passage:
            break;
    }
    return {node->nextNode, p};
}
