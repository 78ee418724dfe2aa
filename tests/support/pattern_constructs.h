// What random patterns are made of: one table of constructs, one of the contexts in which they occur. Every construct
// is drawn in every context, and so is every context in every other; tests/random_test.cpp fails when one is not.
#pragma once

#include <string>
#include <vector>

namespace corvane_tests {

/// What a construct needs. Patterns can be drawn without some of them.
enum Trait : unsigned {
    kCaptures = 1U << 0U,
    kReferences = 1U << 1U,  ///< reads tokens: references and conditions on tokens
    kConditions = 1U << 2U,
    kLookarounds = 1U << 3U,
    kAtomics = 1U << 4U,
    kModes = 1U << 5U,
    kHollowLoops = 1U << 6U,  ///< optional passes over what can match empty, in loops of several
    kDynamics = 1U << 7U,     ///< asks the host, which may evaluate or not
    kUnbounded = 1U << 8U,    ///< has no longest match
    kOwn = 1U << 9U,          ///< other engines read it otherwise, or not at all
    kWide = 1U << 10U,        ///< units beyond ASCII
    kWords = 1U << 11U,       ///< the word anchors
    kPossessives = 1U << 12U,
    kComments = 1U << 13U,  ///< has a comment, which free spacing hides from what pairs the brackets of an expression
    kHiding = 1U << 14U     ///< has a bracket in a comment that nothing but the modes inside tells
};

/// Whether a construct may match the empty text; `asBody`: if what is drawn for its body does.
enum class Empty { never, may, asBody };

/// One row of the tables. In its text a word in braces stands for something drawn anew:
///
///     {body}      a pattern, of which alternatives may be a part; this makes the row a context
///     {one}       the same where bars would be taken for the row's own
///     {full}      the same as one item, made to consume something
///     {hollow}    the same as one item, made to match the empty text too
///     {text}      the same, written so that a dynamic text is read as it; it makes no tokens
///     {included}  the same, not rewritten
///     {some}      a few units
///     {n}         the number of a group opened before, where there is any
///     {k}         the number of a group, which may be a later one
///     {name}      the name of a group, which may be a later one
///     {new}       a name for a group
///     {truth}     an expression with a truth
///
/// Modes that the text sets are followed, and the groups in it are counted.
struct Construct {
    std::u16string text;
    Empty empty;
    unsigned traits = 0;
    unsigned bars = 0;                ///< traits that nothing in its body may have
    const char* barReason = nullptr;  ///< why not
    bool quantifiable = true;         ///< a quantifier after it takes hold of it
};

/// Constructs without a body.
const std::vector<Construct>& leafConstructs();

/// Constructs with a body, which are the contexts of all others.
const std::vector<Construct>& contextConstructs();

}  // namespace corvane_tests
