// Quantifiers: what they say and what they repeat.
//
// A quantifier repeats the last item of the branch: one unit, one group, or a repetition that is there
// already. What cannot be a quantifier is literal text. Whether a repetition becomes copies, a counter or a
// run is decided later, in measure.h.
#include "regexp/parser/escapes.h"
#include "regexp/parser/grammar.h"
#include "regexp/parser/names.h"

#include <algorithm>

namespace {

// Bounds stop growing here: far above the length of any subject, so that a greater one means the same, and
// low enough that ten times it and nine more is no overflow.
constexpr std::uint64_t saturatedBound = 1'000'000'000'000'000'000;

}  // namespace

// False when the unit at `at` is to be taken literally; then `at` has not moved. Braces are read to their
// end even with nothing before them, so that a malformed one gets the warning about its form.
bool RE_Grammar::readQuantifier() {
    const std::size_t start = at;
    std::uint64_t minimum = text[at] == u'+' ? 1 : 0;
    std::uint64_t maximum = text[at] == u'?' ? 1 : RE_Syntax::noMaximum;
    if (text[at] != u'{') {
        ++at;
    } else if (!readBraces(minimum, maximum)) {
        return false;
    }
    if (frame().last == Last::nothing) {
        warnAt(start, RE_WARNING_NOTHING_TO_REPEAT);
        at = start;
        return false;
    }
    repeatLast(start, minimum, maximum);
    return true;
}

// Reads {n}, {n,} or {n,m} and moves `at` past it; leaves `at` alone and warns when the braces are
// malformed. Under free spacing blanks and comments may separate the parts. Only a malformed one looks for
// its closing brace, to tell an unclosed brace from a closed one that says nothing sensible.
bool RE_Grammar::readBraces(std::uint64_t& minimum, std::uint64_t& maximum) {
    const std::size_t end = std::min<std::size_t>(length, frame().close);
    std::size_t i = skipSpacing(text, end, at + 1, flags());
    bool valid = i < end && isAsciiDigit(text[i]);
    minimum = valid ? readNumber(i) : 0;
    maximum = minimum;
    i = skipSpacing(text, end, i, flags());
    if (valid && i < end && text[i] == u',') {
        i = skipSpacing(text, end, i + 1, flags());
        maximum = RE_Syntax::noMaximum;
        if (i < end && isAsciiDigit(text[i])) {
            maximum = readNumber(i);
            i = skipSpacing(text, end, i, flags());
        }
    }
    valid = valid && i < end && text[i] == u'}' && minimum <= maximum;
    if (!valid) {
        const bool closed = brackets.nextBrace(at, flags()) < end;
        warnAt(at, closed ? RE_WARNING_BAD_QUANTIFIER : RE_WARNING_UNCLOSED_QUANTIFIER);
        return false;
    }
    at = i + 1;
    return true;
}

// Consumes all digits, however many, but the value saturates.
std::uint64_t RE_Grammar::readNumber(std::size_t& position) const {
    std::uint64_t value = 0;
    while (position < length && isAsciiDigit(text[position])) {
        value = std::min(value * 10 + static_cast<std::uint64_t>(text[position] - u'0'), saturatedBound);
        ++position;
    }
    return value;
}

// A `?` or `+` after the quantifier is part of it, unless a group closes there. Trap: a text has to lose
// its last unit before the last item is looked up, as that unit alone is repeated.
void RE_Grammar::repeatLast(std::size_t start, std::uint64_t minimum, std::uint64_t maximum) {
    RE_Qualifier how = RE_Qualifier::greedy;
    if (at < length && at != frame().close && (text[at] == u'?' || text[at] == u'+')) {
        how = text[at] == u'?' ? RE_Qualifier::lazy : RE_Qualifier::possessive;
        ++at;
    }
    if (frame().last == Last::dropped) {
        warnAt(start, RE_WARNING_REPEATED_DROPPED);
        return;
    }
    if (tree[tree[frame().branch].lastChild].kind == RE_Syntax_Kind::text) {
        // Without the blanks and the quantifier that the end was noted after.
        tree.detachLastUnit(frame().branch, static_cast<std::uint32_t>(lastUnit));
        tree[tree[frame().branch].lastChild].end = static_cast<std::uint32_t>(start);
    }
    const std::uint32_t item = tree[frame().branch].lastChild;
    if (foldsIntoInner(tree[item], minimum, maximum, how)) {
        return;
    }
    tree.wrap(item, RE_Syntax_Kind::repeat, static_cast<std::uint32_t>(start));
    tree[item].minimum = minimum;
    tree[item].maximum = maximum;
    tree[item].qualifier = how;
}

// Quantifiers on quantifiers fold where the result is the same: any of ? * + on top of X* is X*, and X?
// under ? or * is X? or X*. So long chains of quantifiers neither nest nor grow. All of them have to be
// greedy: `a*?*` tries its lengths in an order that no single loop has.
//
// X? under + is X* only when X consumes something. The required pass counts even where X matches the empty
// text, with what it records; X* would refuse that pass.
bool RE_Grammar::foldsIntoInner(RE_Syntax& inner, std::uint64_t minimum, std::uint64_t maximum,
                                RE_Qualifier how) const {
    const bool outerSimple = minimum <= 1 && (maximum == RE_Syntax::noMaximum || maximum == 1);
    const bool innerSimple = inner.kind == RE_Syntax_Kind::repeat && inner.minimum == 0 &&
                             (inner.maximum == RE_Syntax::noMaximum || inner.maximum == 1);
    const bool bothGreedy = how == RE_Qualifier::greedy && inner.qualifier == RE_Qualifier::greedy;
    const bool keepsEmptyPass =
        minimum == 1 && maximum != 1 && inner.isPlainChoice() && !tree.consumesOneUnit(inner.firstChild);
    if (!outerSimple || !innerSimple || !bothGreedy || keepsEmptyPass) {
        return false;
    }
    inner.maximum = std::max(inner.maximum, maximum);
    return true;
}
