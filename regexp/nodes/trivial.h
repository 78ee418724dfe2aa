// The two nodes that test nothing: the empty node and the end.
//
// An empty node is never visited in a finished graph that has been optimised; an end is the last node of a
// pattern, a sub-pattern or a body.
#pragma once

#include "regexp/graph/node.h"
#include "regexp/state/search_info.h"

/// What is left of an empty group or branch, and where branches meet again.
class CORVANE_REGEXP_EXPORT RE_Null : public RE_Node {
public:
    using RE_Node::RE_Node;
    bool isSkippable() const override { return nextNode != nullptr; }
    RE_Meaning meaning() const override;
    std::string label() const override { return "Null"; }
};

/// The end of a pattern or of a closed body. With a continuation it is the end of a sub-pattern, and matching
/// continues there, in the graph of another pattern.
class CORVANE_REGEXP_EXPORT RE_End_Of_Tree : public RE_Node {
public:
    explicit RE_End_Of_Tree(RE_Graph_Context& context, RE_Node* continuationNode = nullptr,
                            bool bodyEnd = false)
        : RE_Node(context), continuation(continuationNode), endsBody(bodyEnd) {}

    /// The end of the pattern itself refuses a match that consumed nothing when the search rejects empty
    /// matches.
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    /// Whether the search accepts a match that ends at `p`, or the body is complete there. A body may be
    /// empty; only the pattern as a whole can be asked for more.
    bool completes(const char16_t* p, const RE_Search_Info& info) const {
        return endsBody || info.rejectEmpty == 0 || p != info.matchStart;
    }
    RE_Node* next() const override { return continuation; }
    bool isEnd() const override { return continuation == nullptr; }
    RE_Meaning meaning() const override;
    std::string label() const override { return endsBody ? "End of body" : "End"; }
    void graph(RE_Graph_Output& out) override;

    // Null at the end of an outermost pattern, and at that of a body.
    RE_Node* continuation;  ///< never owned, never followed by walks
    bool endsBody;
    bool endsLast = false;  ///< the body is that of a lookahead with which the pattern ends
};
