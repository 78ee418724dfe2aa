// Quantifiers: what they say and what they repeat.
#include "regexp/parser/escapes.h"
#include "regexp/parser/grammar.h"
#include "regexp/parser/names.h"

#include <algorithm>

namespace {

// Far above any subject's length, and far below overflow.
constexpr std::uint64_t saturatedBound = 1'000'000'000'000'000'000;

}  // namespace

// False when the unit at `at` is to be taken literally.
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

// Reads {n}, {n,} or {n,m}; leaves `at` behind it, or where it was when it is none. Where its brace closes is
// seen by reading, past comments under free spacing; one that is none is looked at again for what is wrong.
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

// Bounds saturate, so that reading stops before overflow.
std::uint64_t RE_Grammar::readNumber(std::size_t& position) const {
    std::uint64_t value = 0;
    while (position < length && isAsciiDigit(text[position])) {
        value = std::min(value * 10 + static_cast<std::uint64_t>(text[position] - u'0'), saturatedBound);
        ++position;
    }
    return value;
}

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
        tree.detachLastUnit(frame().branch);
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

// X** and the like repeat what is repeated already: any of ? * + on top of X* is X*, and X? under ? or * is X? or X*.
// Kept from nesting, long chains of quantifiers cost nothing. X? under + is X* only when X consumes something: the pass
// that is required counts also where X matches the empty text, and X* would refuse it.
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
