// What a node means, in terms that can be reasoned about without knowing its class.
//
// `match` defines what a node does in the match loop. `RE_Node::meaning` states the same once more, in one of a dozen
// forms, and everything that reasons about graphs reads that: first units, prefixes, required literals, bottlenecks,
// the automaton, the judgement of growth. A new anchor is one more `Edge` and a new class one more `Unit`, which all of
// them understand at once. A reader that can make nothing of a form gives up there, as it does at `Unknown`; none may take
// it for a node that consumes nothing. A test compares `match` with the meaning.
//
// Pointers are links of the node or lead to what it owns: they are valid as long as the node, and null where there is no
// such way.
#pragma once

#include "regexp/base/export.h"
#include "regexp/graph/node.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <variant>

class RE_Atomic;
class RE_Consume;
class RE_Literal_Set;
class RE_Lookaround_Assertion;
class RE_String;
class RE_Unit_Set;
enum class RE_Pass;

namespace RE_Meanings {

/// Consumes nothing, tests nothing, records nothing.
struct Nothing {
    RE_Node* next;
};

/// Consumes one unit, if the test accepts it.
struct Unit {
    const RE_Consumable* test;
    RE_Node* next;
    RE_Node* otherwise;
};

/// Consumes a text, the units of which may be folded.
struct Text {
    const RE_String* string;
    RE_Node* next;
};

/// Consumes one of many texts, preferring those that come first in the pattern.
struct Texts {
    const RE_Literal_Set* set;
    RE_Node* next;
};

/// Consumes a run of units, as many as its bounds and order say.
struct Run {
    const RE_Consume* loop;
    RE_Node* next;
};

/// What may be on one side of a position.
class CORVANE_REGEXP_EXPORT Side {
public:
    /// Anything: that side is not tested.
    static constexpr Side any() { return Side(Form::any, true); }
    // A unit that is one of these; or, with `atLimit`, no unit, where the subject begins or ends.
    static constexpr Side oneOf(const RE_Unit_Set& units, bool atLimit) {
        Side side(Form::units, atLimit);
        side.units = &units;
        return side;
    }
    static constexpr Side unit(char16_t only, bool atLimit) {
        Side side(Form::unit, atLimit);
        side.one = only;
        return side;
    }
    static constexpr Side acceptedBy(const RE_Consumable& test, bool atLimit) {
        Side side(Form::test, atLimit);
        side.accepts = &test;
        return side;
    }
    /// Nothing but the limit of the subject.
    static constexpr Side limit() { return Side(Form::none, true); }

    bool isAny() const { return form == Form::any; }
    bool holdsAtLimit() const { return atLimit; }
    /// No unit is accepted, only the limit.
    bool isLimit() const { return form == Form::none; }
    bool holds(char16_t neighbour) const;
    /// Calls `visit` with what is accepted: a unit, a set of units, a test of one unit; nothing at the limit only.
    template <class Visit>
    void visitAccepted(Visit visit) const {
        switch (form) {
            case Form::unit:
                visit(one);
                break;
            case Form::units:
                visit(*units);
                break;
            case Form::test:
                visit(*accepts);
                break;
            case Form::any:
            case Form::none:
                break;
        }
    }

private:
    enum class Form : std::uint8_t { any, none, unit, units, test };

    constexpr Side(Form what, bool limit) : form(what), atLimit(limit) {}

    Form form;
    bool atLimit;
    char16_t one = 0;
    union {
        const RE_Unit_Set* units = nullptr;
        const RE_Consumable* accepts;
    };
};

/// Tests what is on the two sides of the position and consumes nothing: an anchor, or a lookaround of one unit.
struct Edge {
    Side before;
    Side after;
    RE_Node* next;
    RE_Node* otherwise = nullptr;
};

/// Notes where a token opens, or closes it.
struct Mark {
    std::size_t token;
    bool opens;
    RE_Node* next;
};

/// Takes the first way that leads to a match, in this order.
struct Choice {
    std::array<RE_Node*, 2> two;  ///< when `many` is empty
    std::span<RE_Node* const> many;

    template <class Visit>
    void forEach(Visit visit) const {
        for (RE_Node* way : many.empty() ? std::span<RE_Node* const>(two) : many) {
            visit(way);
        }
    }
};

/// Opens the count of a loop, which counts from `from` on.
struct Count_Start {
    const RE_Node* counter;
    std::uint64_t from;
    RE_Node* next;
};

/// Counts a pass of a loop and goes on to its body or its exit.
struct Count {
    enum class Kind {
        fixed,   ///< the body up to the count `limit`, then the exit
        greedy,  ///< the body while the count is less than `limit`, the exit as a choice
        lazy     ///< the exit, the body as a choice
    } kind;
    std::uint64_t limit;
    RE_Node* body;
    RE_Node* exit;
};

/// Begins or ends a pass of a loop whose body may match the empty text.
struct Pass {
    std::size_t pass;  ///< the register
    bool begins;
    RE_Pass kind;  ///< of one that begins
    RE_Node* next;
    RE_Node* exit;  ///< where an empty pass goes on that ends the loop
};

/// Matches a body and drops its choices. An atomic group continues at its end, a lookaround where it began: at `next` when
/// it holds, at `otherwise` when it does not.
struct Body {
    const RE_Atomic* atomic;
    const RE_Lookaround_Assertion* look;  ///< one of the two is null
    RE_Node* body;
    RE_Node* next;
    RE_Node* otherwise;
};

/// Matches the text of a token again.
struct Reference {
    RE_Node* next;
    RE_Node* otherwise;
};

/// Decides between two ways by what the search has done so far: a token, or an answer of the host.
struct Condition {
    RE_Node* next;
    RE_Node* otherwise;
};

/// Runs code of the host, which sees the search and changes nothing in it.
struct Host_Call {
    RE_Node* next;
};

/// Matches a text that is made while it is matched.
struct Host_Text {
    RE_Node* next;
};

/// The end of the pattern, or of a body; that of a sub-pattern continues in another graph.
struct End {
    bool ofBody;
    bool ofLast;  ///< of the body of a lookahead with which the pattern ends
    const RE_Node* continuation;
};

/// A node that its class does not describe, as one made by an application.
struct Unknown {};

}  // namespace RE_Meanings

struct RE_Meaning
    : std::variant<RE_Meanings::Unknown, RE_Meanings::Nothing, RE_Meanings::Unit, RE_Meanings::Text,
                   RE_Meanings::Texts, RE_Meanings::Run, RE_Meanings::Edge, RE_Meanings::Mark,
                   RE_Meanings::Choice, RE_Meanings::Count_Start, RE_Meanings::Count, RE_Meanings::Pass,
                   RE_Meanings::Body, RE_Meanings::Reference, RE_Meanings::Condition, RE_Meanings::Host_Call,
                   RE_Meanings::Host_Text, RE_Meanings::End> {
    using variant::variant;
};

/// Calls the visitor with the form of what the node means. A visitor without an answer for each form does not compile.
template <class Visitor>
decltype(auto) visitMeaning(const RE_Node& node, Visitor&& visitor) {
    return std::visit(std::forward<Visitor>(visitor),
                      static_cast<const RE_Meaning::variant&>(node.meaning()));
}
