// Calls of the host from within a match, and the compilation of the texts that it makes.
#include "regexp/nodes/dynamic.h"

#include "regexp/eval/evaluation_io.h"
#include "regexp/graph/meaning.h"
#include "regexp/nodes/graph_context.h"
#include "regexp/state/results.h"
#include "regexp/state/search_info.h"
#include "regexp/state/search_monitor.h"

#include <utility>

namespace {

/// The search as the host sees it at this position. It must not outlive the call.
RE_Results view(const char16_t* subject, std::size_t pos, RE_Search_Info& info) {
    return RE_Results(&info, subject + pos, 0, false);
}

/// How many texts a node is in whose pattern is compiled for `outer`.
std::uint32_t depthIn(const RE_Node* outer) {
    const auto* const including = nodeAs<RE_Dynamic>(outer);
    return including == nullptr ? 0 : including->getDepth() + 1;
}

}  // namespace

bool RE_Evaluate::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    RE_Results results = view(subject, pos, info);
    evaluate(*evaluator, &results);
    info.hostWasCalled();
    return true;
}

bool RE_Evaluate_Assertion::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    RE_Results results = view(subject, pos, info);
    const bool holds = evaluate(*evaluator, &results);
    info.hostWasCalled();
    return holds;
}

RE_Dynamic::RE_Dynamic(RE_Graph_Context& parser, RE_Flags textFlags)
    : RE_Node(parser), flags(textFlags), outer(this), context(parser.context), depth(depthIn(parser.outer)) {}

const RE_Node* RE_Dynamic::includedText(const RE_Search_Info& info) const {
    return info.included.root();
}

// Everything in the text has been tried, as its choices lay above this record: it may be freed.
RE_Node* RE_Dynamic::resume(const RE_Backtrack_Record&, std::size_t&, RE_Search_Info& info) const {
    info.included.trim(info);
    return nullptr;
}

// The text may have any length.
void RE_Dynamic::combineLengths() {
    RE_Node::combineLengths();
    maxBounded = false;
    maxLength = unboundedLength;
}

bool RE_Dynamic::include(const RE_Evaluation_IO& text, std::size_t pos, RE_Search_Info& info) const {
    if (depth >= maximumDepth) {
        info.included.refuse(info);
        return false;
    }
    RE_Work_Of_Search work(info);
    RE_Included_Text compiled =
        RE_Text_Compiler::compile(text, flags, context, nextNode, outer, info.placeOfText(), work);
    if (compiled.root == nullptr) {
        return false;
    }
    info.include(std::move(compiled), this, pos, depth == 0);
    return true;
}

bool RE_Parse_Dynamic::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    RE_Results results = view(subject, pos, info);
    RE_Evaluation_IO expanded;
    const bool complete = expand(*text, &expanded, &results);
    info.hostWasCalled();
    return complete && include(expanded, pos, info);
}

bool RE_Evaluate_Dynamic::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    RE_Results results = view(subject, pos, info);
    const std::unique_ptr<RE_Evaluation_IO> value = evaluate(*evaluator, &results);
    info.hostWasCalled();
    return value != nullptr && include(*value, pos, info);
}

RE_Meaning RE_Evaluate::meaning() const {
    return RE_Meanings::Host_Call{nextNode};
}

RE_Meaning RE_Evaluate_Assertion::meaning() const {
    return RE_Meanings::Condition{nextNode, failTarget};
}

RE_Meaning RE_Dynamic::meaning() const {
    return RE_Meanings::Host_Text{nextNode};
}
