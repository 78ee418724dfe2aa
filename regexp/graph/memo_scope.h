// What the memo has to tell apart at a node, besides the position.
#pragma once

#include <cstddef>

class RE_Node;

/// What the future at a node depends on besides the position, one link for each enclosing construct, inner
/// ones first. Built with the pattern and owned by it.
struct RE_Memo_Scope {
    enum class Kind { counter, pass, token };

    const RE_Memo_Scope* parent;
    Kind kind;
    const RE_Node* counter;  ///< the counter node (kind counter)
    std::size_t index;       ///< the pass register or token number (kinds pass and token)
};
