// A pattern as a value of the program: its text, and how it may be combined with other patterns.
//
// algebra.h has the functions that make and combine builders. Only what a compiled pattern needs is
// declared here, since context.h and tree.h include this.
#pragma once

#include "regexp/base/export.h"
#include "regexp/base/flags.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class RE_Context;

class RE_Compile_Meter;
class RE_Tree;

namespace RE_Builder_Space {

class RE_Token;
class RE_Token_Name;

/// A pattern. A value type; the functions of algebra.h never change one, they make new ones.
///
/// A builder keeps its meaning wherever it is placed: it is grouped where an operator would take it apart,
/// and its references to tokens follow their groups when these are renumbered. What the surroundings
/// decide, unless a mode says it, is whether case counts and whether expressions are evaluated.
///
/// Texts are UTF-16 and owned by the builder, in standard strings. Combining takes time in the length of
/// the result. All functions may throw `std::bad_alloc`. Threads may read one builder at the same time.
class CORVANE_REGEXP_EXPORT RE_Builder {
public:
    /// Matches the empty text, and is neutral under `+`.
    RE_Builder() = default;
    /// `pattern` is pattern text of the application's own, taken unchanged; `literal()` is for text to be
    /// found. Inside another builder it must be well formed: without warnings, unless for an expression
    /// that may not be evaluated. References by number in it count the groups of the finished pattern;
    /// references by name are independent of their place.
    explicit RE_Builder(std::u16string pattern);
    explicit RE_Builder(std::nullptr_t) = delete;

    /// The text, which means the same under all flags and contexts. References become numbers; a token gets
    /// a name of its own where flags or context would decide its number. Reads the pattern four times where
    /// it has references.
    std::u16string pattern() const;

    /// Where `RE_Token_Stack::get` finds the token once this pattern has matched: a slot, from 0. Nothing
    /// when no group has it. Of several groups of a token it is the last, of several with a name the first.
    /// The arguments are those with which the pattern is compiled: flags and context, or none of them. The
    /// context may be null; only `allow_evaluation` is called, on this thread, and may throw. Reads the
    /// pattern once for each call.
    std::optional<std::size_t> tokenIndex(const RE_Token& token) const;
    std::optional<std::size_t> tokenIndex(const RE_Token& token, RE_Flags flags, RE_Context* context) const;
    std::optional<std::size_t> tokenIndex(RE_Token_Name name) const;
    std::optional<std::size_t> tokenIndex(RE_Token_Name name, RE_Flags flags, RE_Context* context) const;

    /// One after the other. Takes the argument's text where it can; pass it by `std::move` when it is not
    /// needed any more.
    RE_Builder& operator+=(RE_Builder next);
    friend RE_Builder operator+(RE_Builder first, RE_Builder second) {
        first += std::move(second);
        return first;
    }

private:
    friend class ::RE_Tree;
    friend struct RE_Composer;
    friend class RE_Template;
    class Draft;

    /// What an operator beside the text would take hold of, from the loosest to the tightest: `bindAtLeast`
    /// compares them.
    enum class Binding : std::uint8_t {
        foreign,       ///< the application's own: may also change modes up to the end of the group around it
        alternatives,  ///< may have a bar at its top: to be grouped before anything is placed beside it
        sequence,  ///< may be several items, or one with a quantifier: to be grouped before it is repeated
        item       ///< a quantifier takes all of it
    };

    /// A place in the text at which something about a token is to be put in. What is put in depends on the
    /// number of the token's group, so it waits until the whole pattern is known.
    struct Mark {
        enum class Kind : std::uint8_t {
            opens,   ///< the parenthesis of its group
            refers,  ///< a reference to it
            tests,   ///< a condition on it
            inserts  ///< its text, in an expression or a dynamic text
        } kind;
        std::size_t at;       ///< index in the text, in units
        std::uint64_t token;  ///< its identity
    };

    /// The pattern text. Reading it in advance is work for the meter (may be null).
    std::u16string drawn(RE_Compile_Meter* meter) const;
    /// Groups the text if it holds together less tightly than `needed`.
    void bindAtLeast(Binding needed);
    /// Puts `open` and `close` around the text and moves the marks along. The result is an item.
    void encloseIn(std::u16string_view open, std::u16string_view close);
    /// Appends text and marks as they are; grouping is the caller's.
    void append(RE_Builder next);

    std::u16string text;      ///< the pattern without its references to tokens that have no name
    std::vector<Mark> marks;  ///< ascending
    Binding binding = Binding::sequence;
};

}  // namespace RE_Builder_Space
