// Patterns put together by a program, piece by piece.
//
//     using namespace RE_Builder_Space;
//
//     const RE_Token quote;
//     const RE_Builder quoted = capture(quote, one_of(RE_SetItem(u"'\""))) +
//                               capture(u"text", kleene(any_unit(), RE_LAZY)) + backreference(quote);
//     const RE_Tree tree(quoted, false);   // (['"])(?<text>(?s:.)*?)\1
//
// A text is not a pattern: one that is to be found goes through `literal`, which quotes whatever has a
// meaning in patterns; one that is a pattern already goes through the constructor of `RE_Builder`. Pieces
// mean the same wherever they are put and with whatever flags they are compiled, free spacing included;
// only whether case counts and whether expressions are evaluated is left to the flags. `optional` and
// `atomic` are names of the standard library too: a source that opens both namespaces writes them in full.
//
// For all functions here: arguments are copied and never changed, so no result depends on how long they
// live. Texts are UTF-16, taken unit by unit. A result takes time and memory in its length. They throw
// `std::bad_alloc` and nothing else, and may be called on any thread. What can be wrong in a piece does not
// compile.
#pragma once

#include "regexp/base/flags.h"
#include "regexp/builder/builder.h"
#include "regexp/builder/repetition.h"
#include "regexp/builder/sets.h"
#include "regexp/builder/template.h"
#include "regexp/builder/tokens.h"

#include <concepts>
#include <cstddef>
#include <span>
#include <string_view>

namespace RE_Builder_Space {

/// Modes for a part of a pattern; one at a time.
enum RE_MODE : RE_Flags {
    RE_MODE_IGNORE_CASE = RE_FLAG_IGNORE_CASE,
    RE_MODE_DOT_ALL = RE_FLAG_DOT_ALL,            ///< matters to foreign pattern text only
    RE_MODE_LINE_ANCHORS = RE_FLAG_LINE_ANCHORS,  ///< likewise
    RE_MODE_FREE_SPACING = RE_FLAG_FREE_SPACING,  ///< likewise
    RE_MODE_EVALUATE = RE_FLAG_EVALUATE           ///< expressions are evaluated, if the context allows it
};

// --- texts and units ---

/// Exactly this text, unit by unit.
CORVANE_REGEXP_EXPORT RE_Builder literal(std::u16string_view text);
RE_Builder literal(std::nullptr_t) = delete;
/// Any one unit, line feed included.
CORVANE_REGEXP_EXPORT RE_Builder any_unit();
/// Any one unit but the line feed (U+000A).
CORVANE_REGEXP_EXPORT RE_Builder any_but_line_feed();
/// One unit of the set; of an empty set, none.
CORVANE_REGEXP_EXPORT RE_Builder one_of(const RE_SetItem& set);
/// One unit that is not in the set.
CORVANE_REGEXP_EXPORT RE_Builder none_of(const RE_SetItem& set);

// --- positions ---

// They consume nothing. The anchors say which kind they are, whatever the flags.

/// Before the first unit of the subject, and nowhere else.
CORVANE_REGEXP_EXPORT RE_Builder subject_start();
CORVANE_REGEXP_EXPORT RE_Builder subject_end();
/// At the start of the subject or after a line feed; at its end or before a line feed.
CORVANE_REGEXP_EXPORT RE_Builder line_start();
CORVANE_REGEXP_EXPORT RE_Builder line_end();
/// No word unit just before here; what follows does not matter.
CORVANE_REGEXP_EXPORT RE_Builder word_start();
/// No word unit just after here; what precedes does not matter.
CORVANE_REGEXP_EXPORT RE_Builder word_end();
/// The body matches from here, or does not; it matches up to here, or does not. Choices within the body are
/// dropped once that is known. Tokens of a positive one stay, those of a negative one do not.
CORVANE_REGEXP_EXPORT RE_Builder pos_ahead(const RE_Builder& body);
CORVANE_REGEXP_EXPORT RE_Builder neg_ahead(const RE_Builder& body);
CORVANE_REGEXP_EXPORT RE_Builder pos_behind(const RE_Builder& body);
CORVANE_REGEXP_EXPORT RE_Builder neg_behind(const RE_Builder& body);

// --- choices and repetition ---

/// The first of these that lets the rest match; of no alternatives, nothing matches.
CORVANE_REGEXP_EXPORT RE_Builder either(std::span<const RE_Builder> alternatives);
template <std::same_as<RE_Builder>... More>
RE_Builder either(const RE_Builder& first, const RE_Builder& second, const More&... more) {
    const RE_Builder alternatives[] = {first, second, more...};
    return either(std::span(alternatives));
}

/// Any number of passes; at least one; at most one; a number within bounds. The body is grouped where it
/// has to be.
CORVANE_REGEXP_EXPORT RE_Builder kleene(const RE_Builder& body, RE_GREED greed = RE_GREEDY);
CORVANE_REGEXP_EXPORT RE_Builder one_or_more(const RE_Builder& body, RE_GREED greed = RE_GREEDY);
CORVANE_REGEXP_EXPORT RE_Builder optional(const RE_Builder& body, RE_GREED greed = RE_GREEDY);
CORVANE_REGEXP_EXPORT RE_Builder quantify(const RE_Builder& body, RE_Bounds bounds,
                                          RE_GREED greed = RE_GREEDY);

// --- groups ---

/// Has no effect on what matches; builders group by themselves.
CORVANE_REGEXP_EXPORT RE_Builder group(const RE_Builder& body);
/// Keeps its first match: its choices are dropped.
CORVANE_REGEXP_EXPORT RE_Builder atomic(const RE_Builder& body);
/// The body with the mode on, or off, whatever the flags say. Modes within the body win.
CORVANE_REGEXP_EXPORT RE_Builder with_mode(RE_MODE mode, const RE_Builder& body);
CORVANE_REGEXP_EXPORT RE_Builder without_mode(RE_MODE mode, const RE_Builder& body);

// --- tokens ---

/// Records what the body matches as a token: without a way to refer to it, under an identity, or under a
/// name. Several groups may share either.
CORVANE_REGEXP_EXPORT RE_Builder capture(const RE_Builder& body);
CORVANE_REGEXP_EXPORT RE_Builder capture(const RE_Token& token, const RE_Builder& body);
CORVANE_REGEXP_EXPORT RE_Builder capture(RE_Token_Name name, const RE_Builder& body);

/// The text of the nearest group of this token that opens before here, in the finished pattern; never
/// matches when there is none.
CORVANE_REGEXP_EXPORT RE_Builder backreference(const RE_Token& token);
/// The text of the first token in effect that has this name, wherever its groups are.
CORVANE_REGEXP_EXPORT RE_Builder backreference(RE_Token_Name name);

/// `yes` where that token has text, otherwise `no`.
CORVANE_REGEXP_EXPORT RE_Builder if_token(const RE_Token& token, const RE_Builder& yes,
                                          const RE_Builder& no = RE_Builder());
CORVANE_REGEXP_EXPORT RE_Builder if_token(RE_Token_Name name, const RE_Builder& yes,
                                          const RE_Builder& no = RE_Builder());

// --- conditions on the surroundings ---

/// `yes` where `pos_ahead(body)` holds, otherwise `no`; and so on.
CORVANE_REGEXP_EXPORT RE_Builder if_pos_ahead(const RE_Builder& body, const RE_Builder& yes,
                                              const RE_Builder& no = RE_Builder());
CORVANE_REGEXP_EXPORT RE_Builder if_neg_ahead(const RE_Builder& body, const RE_Builder& yes,
                                              const RE_Builder& no = RE_Builder());
CORVANE_REGEXP_EXPORT RE_Builder if_pos_behind(const RE_Builder& body, const RE_Builder& yes,
                                               const RE_Builder& no = RE_Builder());
CORVANE_REGEXP_EXPORT RE_Builder if_neg_behind(const RE_Builder& body, const RE_Builder& yes,
                                               const RE_Builder& no = RE_Builder());

// --- expressions of the host ---
//
// Compiled where flags or context forbid evaluation they raise warning 17 and are not there. Calls of the
// host come from the search, on its thread.

/// Evaluates a script for its effects; matches the empty text.
CORVANE_REGEXP_EXPORT RE_Builder evaluate(const RE_Template& script);
/// The text that the expression yields, read as a pattern.
CORVANE_REGEXP_EXPORT RE_Builder dynamic_expression(const RE_Template& expression);
/// This text, read as a pattern once the tokens have their places in it.
CORVANE_REGEXP_EXPORT RE_Builder dynamic_text(const RE_Template& text);
/// `yes` where the expression is true, otherwise `no`. Neither is there when it may not be evaluated.
CORVANE_REGEXP_EXPORT RE_Builder if_expression(const RE_Template& expression, const RE_Builder& yes,
                                               const RE_Builder& no = RE_Builder());

}  // namespace RE_Builder_Space
