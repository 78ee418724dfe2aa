// How the work of a search grows with its text.
//
// A backtracking search can lose its way where one text can be consumed in more than one manner: by two loops
// that follow each other, by a loop within a loop, or by a loop and the search for a start. The judgement
// looks for such pairs in the graph. It knows nothing of what the memo saves, so "exponential" describes the
// pattern, not a search of this engine. Where it is not sure it says "unknown", never "linear".
#pragma once

#include "regexp/base/export.h"

#include <cstddef>
#include <cstdint>
#include <string>

class RE_Node;
class RE_Tree;

/// The judgement and, unless it is linear or unknown, a text to show it by. The nodes belong to the tree.
struct CORVANE_REGEXP_EXPORT RE_Growth {
    enum class Kind {
        linear,       ///< in proportion to the text
        polynomial,   ///< two loops share a text between them in as many ways as it is long
        exponential,  ///< one loop takes a text in two ways, and again for every pass
        unknown       ///< the pattern has too many states, or states that are not known before the search
    };

    /// The prefix, the pump `times` times, and the suffix: a text on which the growth shows as `times` rises.
    std::u16string witness(std::size_t times) const;

    Kind kind = Kind::linear;
    const RE_Node* loop = nullptr;   ///< a unit test within the loop; null: the search for a start
    const RE_Node* rival = nullptr;  ///< one in the loop that it is ambiguous with, perhaps the same loop
    // Texts, in code units. Any of them but the pump may be empty.
    std::u16string prefix;
    std::u16string pump;
    std::u16string suffix;
};

/// Changes nothing in `tree`, but makes a few short searches of it to choose the suffix. The work is bounded
/// by a count of steps, at which the answer is "unknown"; that may be millions of steps, so this is for
/// tools.
CORVANE_REGEXP_EXPORT RE_Growth judgeGrowth(const RE_Tree& tree);
