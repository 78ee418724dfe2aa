// The syntax tree of the reference matcher. Nothing here is shared with the library: two independent readings of the
// dialect are only worth comparing while they stay independent.
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace corvane_tests::reference {

enum class Kind {
    Sequence,     // children in order; no children matches empty
    Alternation,  // children tried in order
    Unit,         // one unit in `ranges`
    Repeat,       // child 0 between min and max times
    Capture,      // child 0, recorded in slot `number`
    Atomic,       // child 0, first way only
    Look,         // child 0 as an assertion
    Reference,    // text of a token, by name when it has one
    Conditional,  // child 0 when the condition holds, child 1 otherwise
    Anchor,       // `letter`: ^ $ (subject), ( ) (line), < > (word)
    Dynamic       // `expansion`, read as a pattern in `modes`
};

struct Range {
    char16_t low;
    char16_t high;
};

/// The modes in force at one place of a pattern.
struct Flags {
    bool ignoreCase;
    bool dotAll;
    bool lineAnchors;
    bool freeSpacing;
    bool evaluate;  ///< expressions may be evaluated

    /// From flag bits as the engine's callers pass them, for a host that evaluates or one that does not.
    static Flags from(unsigned bits, bool hostEvaluates) {
        return {(bits & 1U) != 0, (bits & 2U) != 0, (bits & 4U) != 0, (bits & 8U) != 0,
                (bits & 16U) != 0 && hostEvaluates};
    }
};

/// A piece of a text that is put together while a search runs.
struct TextPart {
    enum class Kind { Literal, Number, Name, Special, Expression } kind;
    /// What stands for itself; the digits, the name or the sign of a reference; an expression as written.
    std::u16string text;

    bool operator==(const TextPart&) const = default;
};

/// One type for all kinds; which members count is said beside the kinds.
struct Node {
    Kind kind = Kind::Sequence;
    std::vector<std::unique_ptr<Node>> children;
    std::vector<Range> ranges;
    bool negated = false;
    bool ignoreCase = false;
    size_t min = 0;
    size_t max = std::numeric_limits<size_t>::max();
    bool lazy = false;
    size_t number = 0;
    std::u16string name;
    bool behind = false;
    std::unique_ptr<Node> condition;  // lookaround condition; null for a token condition or an expression
    char letter = 0;
    std::vector<TextPart> expansion;  // of a dynamic text, or the one expression of a condition
    Flags modes{};                    // in force at a dynamic text
};

using NodePtr = std::unique_ptr<Node>;

struct Pattern {
    NodePtr root;
    std::vector<std::u16string> tokenNames;  ///< by slot; empty for a group without a name
};

}  // namespace corvane_tests::reference
