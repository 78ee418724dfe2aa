// Conditional groups: (?(condition)yes|no).
#include "regexp/parser/escapes.h"
#include "regexp/parser/grammar.h"
#include "regexp/parser/names.h"

#include <algorithm>

// The condition's own parentheses are paired like any others, so its end is known.
void RE_Grammar::readConditional(std::uint32_t close) {
    const std::size_t open = at + 2;
    const std::uint32_t end = brackets.closing(open);
    const std::size_t start = open + 1;
    if (end == RE_Brackets::none || end >= close) {
        warnAt(open, RE_WARNING_UNCLOSED_CONDITION);
        dropGroup(close);
        return;
    }
    if (start + 1 < end && text[start] == u'?' && text[start + 1] == u'@') {
        readEvaluatedConditional(close, start + 2, end);
        return;
    }
    Reference token{RE_Syntax::none, 0, static_cast<std::uint32_t>(start)};
    const bool look = text[start] == u'?' && isLookaroundMark(start + 1, end);
    if (!look && !readTokenCondition(token, start, end)) {
        warnAt(start, RE_WARNING_BAD_CONDITION);
        dropGroup(close);
        return;
    }
    if (look && closedDepth >= maximumClosedDepth) {
        warnAt(open, RE_WARNING_TOO_DEEP);
        dropGroup(close);
        return;
    }
    context.context->conditionalCreationCallback();
    addItem(RE_Syntax_Kind::conditional, at);
    const std::uint32_t conditional = tree[frame().branch].lastChild;
    if (look) {
        openLookCondition(conditional, close, start, end);
    } else {
        tree[conditional].number = token.number;
        tree[conditional].payload = token.name;
        references.push_back(token);
        openFrame(conditional, close, end + std::size_t{1}, false);
    }
}

void RE_Grammar::readEvaluatedConditional(std::uint32_t close, std::size_t start, std::uint32_t end) {
    if (!mayEvaluate()) {
        dropGroup(close);
        return;
    }
    context.context->conditionalCreationCallback();
    const std::uint32_t condition = readDynamicCondition(start, end);
    addItem(RE_Syntax_Kind::conditional, at);
    const std::uint32_t conditional = tree[frame().branch].lastChild;
    tree[conditional].condition = condition;
    openFrame(conditional, close, end + std::size_t{1}, false);
}

// The assertion is read like any other and then taken out of the branch: it is the condition.
void RE_Grammar::openLookCondition(std::uint32_t conditional, std::uint32_t close, std::size_t start,
                                   std::uint32_t end) {
    openFrame(conditional, close, start - 1, false);
    const std::uint32_t branch = frame().branch;
    readLookaround(start + 1, end);
    tree[conditional].condition = frame().group;
    tree[branch].firstChild = tree[branch].lastChild = RE_Syntax::none;
    frame().isCondition = true;
}

bool RE_Grammar::readTokenCondition(Reference& token, std::size_t start, std::size_t end) {
    if (start >= end) {
        return false;
    }
    if (std::all_of(text + start, text + end, isAsciiDigit)) {
        std::size_t digits = start;
        const std::uint64_t number = readNumber(digits);
        token.number = number - 1;
        return number != 0;
    }
    if (isAsciiLetter(text[start]) && skipNameUnits(text, end, start) == end) {
        token.name = static_cast<std::uint32_t>(tree.names.size());
        tree.names.emplace_back(text + start, end - start);
        return true;
    }
    return false;
}
