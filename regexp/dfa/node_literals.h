// The literals that stand at a node of a graph.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

class RE_Node;

/// One of them is what the node matches; none where it is no node of literals.
struct RE_Node_Literals {
    std::vector<std::u16string_view> texts;
    bool ignoreCase = false;

    std::size_t units() const {
        std::size_t all = 0;
        for (const std::u16string_view text : texts) {
            all += text.size();
        }
        return all;
    }
};

RE_Node_Literals literalsOf(const RE_Node* node);
