// One step of the match loop for the nodes that most steps visit: the same functions that `RE_Node` declares,
// called without looking them up. What a node does is written once, in its class.
#pragma once

#include "regexp/nodes/anchors.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/split.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/units.h"
#include "regexp/search_info.h"

/// Visits a node of the class `Unit`.
template <class Unit>
const RE_Node* visitUnit(const RE_Node* node, std::size_t& pos, const RE_Search_Info& info) {
    const auto& test = static_cast<const Unit&>(*node);
    const char16_t* const p = info.subjectBegin + pos;
    if (p < info.subjectEnd && test.Unit::matchesUnit(*p)) {
        ++pos;
        return test.nextNode;
    }
    return test.failTarget;
}

/// Visits a node of the class `Leaf`, which has no other way on when it fails.
template <class Leaf>
const RE_Node* visitLeaf(const RE_Node* node, std::size_t& pos, RE_Search_Info& info) {
    const auto& leaf = static_cast<const Leaf&>(*node);
    return leaf.Leaf::match(info.subjectBegin, pos, info) ? leaf.nextNode : nullptr;
}

/// Visits a test of a position.
template <class Anchor>
const RE_Node* visitAnchor(const RE_Node* node, std::size_t pos, const RE_Search_Info& info) {
    const auto& anchor = static_cast<const Anchor&>(*node);
    return anchor.Anchor::holdsAt(info.subjectBegin + pos, info) ? anchor.nextNode : nullptr;
}

/// Visits a loop over one unit. Most give nothing back and are over after a few units.
inline const RE_Node* visitRun(const RE_Node* node, std::size_t& pos, RE_Search_Info& info) {
    const auto& loop = static_cast<const RE_Consume&>(*node);
    if (loop.possessive && !loop.lazy) {
        const char16_t* const p = info.subjectBegin + pos;
        const std::uint64_t left = static_cast<std::uint64_t>(info.subjectEnd - p);
        if (const char16_t* const end = loop.shortRunEnd(p, p + std::min(left, loop.maximum))) {
            if (static_cast<std::uint64_t>(end - p) < loop.minimum) {
                return nullptr;
            }
            pos = info.indexOf(end);
            return loop.nextNode;
        }
    }
    return visitLeaf<RE_Consume>(node, pos, info);
}

/// Visits a node of a kind other than `other` and `end`. Returns the node to go on at, or null where a choice
/// has to be taken up.
[[gnu::always_inline]] inline const RE_Node* visitDirectly(const RE_Node* node, std::size_t& pos,
                                                           RE_Search_Info& info) {
    switch (node->kind) {
        case RE_Node_Kind::literal:
            return visitUnit<RE_Natural>(node, pos, info);
        case RE_Node_Kind::foldedLiteral:
            return visitUnit<RE_Natural_I>(node, pos, info);
        case RE_Node_Kind::range:
            return visitUnit<RE_Range>(node, pos, info);
        case RE_Node_Kind::namedClass:
            return visitUnit<RE_Escaped_Set>(node, pos, info);
        case RE_Node_Kind::unitClass:
            return visitUnit<RE_Unit_Class>(node, pos, info);
        case RE_Node_Kind::dotLine:
            return visitUnit<RE_Dot_Line>(node, pos, info);
        case RE_Node_Kind::string:
            return visitLeaf<RE_String>(node, pos, info);
        case RE_Node_Kind::run:
            return visitRun(node, pos, info);
        case RE_Node_Kind::split:
            return visitLeaf<RE_Split>(node, pos, info);
        case RE_Node_Kind::dispatch:
            return static_cast<const RE_Dispatch*>(node)->choose(pos, info);
        case RE_Node_Kind::literalSet:
            return visitLeaf<RE_Literal_Set>(node, pos, info);
        case RE_Node_Kind::startToken:
            return visitLeaf<RE_Start_Token>(node, pos, info);
        case RE_Node_Kind::endToken:
            return visitLeaf<RE_End_Token>(node, pos, info);
        case RE_Node_Kind::matchToken: {
            const auto& token = static_cast<const RE_Match_Token&>(*node);
            return token.RE_Match_Token::match(info.subjectBegin, pos, info) ? token.nextNode
                                                                             : token.failTarget;
        }
        case RE_Node_Kind::lineStart:
            return visitAnchor<RE_Start_Line>(node, pos, info);
        case RE_Node_Kind::lineEnd:
            return visitAnchor<RE_End_Line>(node, pos, info);
        case RE_Node_Kind::textStart:
            return visitAnchor<RE_Start_String>(node, pos, info);
        case RE_Node_Kind::textEnd:
            return visitAnchor<RE_End_String>(node, pos, info);
        case RE_Node_Kind::wordStart:
            return visitAnchor<RE_Start_Word>(node, pos, info);
        case RE_Node_Kind::wordEnd:
            return visitAnchor<RE_End_Word>(node, pos, info);
        case RE_Node_Kind::passage:
        case RE_Node_Kind::end:
        case RE_Node_Kind::other:
            break;
    }
    return node->nextNode;
}
