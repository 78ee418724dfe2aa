// The node that offers two ways on: first `nextNode`, later, when that way has failed, `alternative`.
//
// It tests and consumes nothing. Its record holds the position of the choice, and no word.
#pragma once

#include "regexp/nodes/can_seek.h"

/// Also the base of the counters. `reuseRecord`, for nodes made by hand, keeps one record for all choices of
/// the node.
class CORVANE_REGEXP_EXPORT RE_Split : public RE_Branch_Seek<RE_Can_Seek<RE_Node>> {
public:
    using RE_Branch_Seek<RE_Can_Seek<RE_Node>>::RE_Branch_Seek;

    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Node* alternativeNode() const override { return alternative; }
    bool isBranching() const override { return true; }
    void visitLinks(RE_Link_Visitor& visitor) override;
    RE_Meaning meaning() const override;
    std::string label() const override { return "Split"; }

    RE_Node* alternative = nullptr;
};
