// Everything that a parenthesis can open: captures, plain and named groups, closed bodies, modes, comments,
// conditionals, and what is handed to the host: (?@expr), (?(?@expr)...), (??text) and (??@expr).
//
// Each reader is called with `at` at the opening parenthesis and with the index of the parenthesis that
// closes it, which is known before. It either opens a frame and moves `at` to the first unit of the
// content, or consumes the whole group. A group that cannot be what it says is dropped as a whole, with one
// warning: its content was written for a construct that is not there, so reading it as pattern text would
// match something nobody meant.
#include "regexp/eval/host_expressions.h"
#include "regexp/parser/escapes.h"
#include "regexp/parser/grammar.h"
#include "regexp/parser/names.h"

#include <algorithm>

void RE_Grammar::openFrame(std::uint32_t group, std::uint32_t close, std::size_t contentStart,
                           bool closedBody) {
    const std::uint32_t branch =
        tree.add(RE_Syntax_Kind::sequence, static_cast<std::uint32_t>(contentStart), flags());
    tree.append(group, branch);
    frames.push_back({group, branch, close, flags(), false, false, closedBody, Last::nothing});
    closedDepth += closedBody ? 1 : 0;
    at = contentStart;
}

// Marks what the frame held as complete, inner items first. In a divided conditional `group` is the second
// branch, so the conditional itself, the last child of the branch around it, follows.
void RE_Grammar::endFrame() {
    const Frame& ended = frame();
    tree.close(ended.branch);
    tree.close(ended.group);
    if (ended.divided) {
        tree.close(tree[frames[frames.size() - 2].branch].lastChild);
    }
    frames.pop_back();
}

// Trap: the frame is copied because `endFrame` pops it. A lookaround that is a condition leaves nothing to
// repeat: it belongs to the conditional, and a quantifier after it is literal text of the first branch.
void RE_Grammar::closeFrame() {
    const Frame closed = frame();
    endFrame();
    closedDepth -= closed.closed ? 1 : 0;
    context.flags = closed.outerFlags;
    at = closed.close + 1;
    // The second branch of a conditional ends before the parenthesis, which closes the conditional.
    tree[closed.group].end = static_cast<std::uint32_t>(closed.divided ? closed.close : at);
    frame().last = closed.isCondition ? Last::nothing : Last::item;
}

void RE_Grammar::readGroup() {
    const std::uint32_t close = brackets.closing(at);
    if (close == RE_Brackets::none) {
        warnUnclosed();
        addLiteral(u'(', at++);
    } else if (text[at + 1] != u'?') {
        readCapture(close);
    } else {
        readMarkedGroup(close);
    }
}

// A parenthesis without its partner is literal. An unclosed conditional with an unclosed condition is one
// problem, not two: the outer parenthesis reports it and the inner one, met next, stays silent.
void RE_Grammar::warnUnclosed() {
    const auto isUnclosed = [this](std::size_t i) {
        return i < length && text[i] == u'(' && brackets.closing(i) == RE_Brackets::none;
    };
    if (at + 2 < length && text[at + 1] == u'?' && isUnclosed(at + 2)) {
        warnAt(at + 2, RE_WARNING_UNCLOSED_CONDITION);
    } else if (at < 2 || text[at - 1] != u'?' || !isUnclosed(at - 2)) {
        warnAt(at, RE_WARNING_UNMATCHED_OPEN);
    }
}

// Slots are numbered in the order of the opening parentheses, as they are read.
void RE_Grammar::readCapture(std::uint32_t close) {
    addItem(makesTokens ? RE_Syntax_Kind::capture : RE_Syntax_Kind::group, at);
    const std::uint32_t group = tree[frame().branch].lastChild;
    if (makesTokens) {
        tree[group].number = tree.groupCount++;
    }
    openFrame(group, close, at + 1, false);
}

// The group begins with `(?`. Lookarounds come first, since `(?<=` and `(?<!` would be taken for names. A
// comment leaves `last` alone, so that a quantifier after it repeats what precedes the comment.
void RE_Grammar::readMarkedGroup(std::uint32_t close) {
    if (isLookaroundMark(at + 2, close)) {
        readLookaround(at + 2, close);
        return;
    }
    switch (text[at + 2]) {
        case u'#':
            at = close + 1;
            return;
        case u':':
            addItem(RE_Syntax_Kind::group, at);
            openFrame(tree[frame().branch].lastChild, close, at + 3, false);
            return;
        case u'<':
            readNamedGroup(close);
            return;
        case u'>': {
            RE_Syntax atomic{};
            atomic.kind = RE_Syntax_Kind::atomic;
            openClosedBody(atomic, close, at + 3);
            return;
        }
        case u'(':
            readConditional(close);
            return;
        case u'?':
        case u'@':
            readDynamicGroup(close);
            return;
        default:
            readModeGroup(close);
    }
}

// Where no tokens are made the name is dropped but the group stays, with a warning. Several groups may
// share a name.
void RE_Grammar::readNamedGroup(std::uint32_t close) {
    const RE_Name name = readName(text, close, at + 3, flags());
    if (name.text.empty()) {
        warnAt(at + 2, RE_WARNING_BAD_NAME);
        dropGroup(close);
        return;
    }
    if (!makesTokens) {
        warnAt(at + 2, RE_WARNING_NAME_WITHOUT_TOKEN);
        addItem(RE_Syntax_Kind::group, at);
        openFrame(tree[frame().branch].lastChild, close, name.end, false);
        return;
    }
    addItem(RE_Syntax_Kind::capture, at);
    const std::uint32_t group = tree[frame().branch].lastChild;
    tree[group].number = tree.groupCount++;
    tree[group].payload = static_cast<std::uint32_t>(tree.names.size());
    tree.names.push_back(name.text);
    context.tokenNames.emplace(name.text, tree[group].number);
    openFrame(group, close, name.end, false);
}

bool RE_Grammar::isLookaroundMark(std::size_t mark, std::size_t end) const {
    const std::size_t sign = mark < end && text[mark] == u'<' ? mark + 1 : mark;
    return sign < end && (text[sign] == u'=' || text[sign] == u'!');
}

// `mark` is the index of one of `=`, `!`, `<=`, `<!`.
void RE_Grammar::readLookaround(std::size_t mark, std::uint32_t close) {
    RE_Syntax look{};
    look.kind = RE_Syntax_Kind::look;
    look.behind = text[mark] == u'<';
    const std::size_t sign = look.behind ? mark + 1 : mark;
    look.negative = text[sign] == u'!';
    openClosedBody(look, close, sign + 1);
}

// `item` carries the kind and the flags of a look; an item of the tree is made of it unless bodies nest too
// deeply.
void RE_Grammar::openClosedBody(RE_Syntax item, std::uint32_t close, std::size_t contentStart) {
    if (closedDepth >= maximumClosedDepth) {
        warnAt(at, RE_WARNING_TOO_DEEP);
        dropGroup(close);
        return;
    }
    addItem(item.kind, at);
    const std::uint32_t group = tree[frame().branch].lastChild;
    tree[group].behind = item.behind;
    tree[group].negative = item.negative;
    openFrame(group, close, contentStart, true);
}

// `(?i)` changes the modes up to the end of the group around it and leaves nothing to repeat; `(?i:...)`
// changes them within. Trap: in the second case the frame is opened first, as it keeps the modes to return
// to.
void RE_Grammar::readModeGroup(std::uint32_t close) {
    const RE_Modes modes = readModes(text, close + std::size_t{1}, at + 2, flags());
    if (modes.problem != RE_WARNING_NONE) {
        warnAt(modes.end <= close ? modes.end : close, modes.problem);
        dropGroup(close);
    } else if (text[modes.end] == u')') {
        context.flags = modes.flags;
        frame().last = Last::nothing;
        at = close + 1;
    } else {
        addItem(RE_Syntax_Kind::group, at);
        openFrame(tree[frame().branch].lastChild, close, modes.end + 1, false);
        context.flags = modes.flags;
    }
}

// The warning has been raised. A quantifier that follows is dropped too, see `Last`.
void RE_Grammar::dropGroup(std::uint32_t close) {
    frame().last = Last::dropped;
    at = close + std::size_t{1};
}

// (?(condition)yes|no). The condition's own parentheses are paired like any others, so its end is known. A
// condition is an expression, a lookaround, or the number or name of a token. The order of the checks
// matters to the host: the callback comes when nothing can refuse the construct any more, and before its
// item.
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

// Where expressions may not be evaluated the whole conditional is dropped: neither branch could be chosen.
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

// The assertion is read like any other, as the first item of the first branch, and then taken out of it to
// be the condition. Its frame is on top at that moment, which is why `frame()` before and after
// `readLookaround` are different groups. When it closes, reading continues in the first branch.
void RE_Grammar::openLookCondition(std::uint32_t conditional, std::uint32_t close, std::size_t start,
                                   std::uint32_t end) {
    openFrame(conditional, close, start - 1, false);
    const std::uint32_t branch = frame().branch;
    readLookaround(start + 1, end);
    tree[conditional].condition = frame().group;
    tree[branch].firstChild = tree[branch].lastChild = RE_Syntax::none;
    frame().isCondition = true;
}

// Fills in the number (as a slot, from 0) or the name. A number that no group has is a condition that never
// holds; a word is a name even when no group has it, as the group may follow.
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

// Warns here, so that callers only drop the group.
bool RE_Grammar::mayEvaluate() {
    const bool may = context.mayEvaluate();
    if (!may) {
        warnAt(at, RE_WARNING_EVALUATION_DISABLED);
    }
    return may;
}

// The marks are `?@` (a script), `??@` (an expression whose value is a pattern) or `??` (a text that
// becomes one). The host compiles an expression right here: its clone of the context and its function are
// made in the order of the pattern.
void RE_Grammar::readDynamicGroup(std::uint32_t close) {
    if (!mayEvaluate()) {
        dropGroup(close);
        return;
    }
    const bool isScript = text[at + 2] == u'@';
    const bool isExpression = !isScript && text[at + 3] == u'@';
    const std::size_t start = at + (isExpression ? 4 : 3);
    const std::size_t units = close - start;
    if (isScript) {
        addDynamic(compileScript(context, text + start, units));
    } else if (isExpression) {
        addDynamic(compileExpression(context, text + start, units));
    } else {
        addDynamic(compileDynamicText(context, text + start, units));
    }
    context.meter.ask();  // the host has been called
    at = close + std::size_t{1};
}

// From here on the pattern may call its host while it matches, which switches off many shortcuts.
void RE_Grammar::addDynamic(RE_Syntax_Dynamic dynamic) {
    addItem(RE_Syntax_Kind::evaluate, at);
    tree[tree[frame().branch].lastChild].payload = static_cast<std::uint32_t>(tree.dynamics.size());
    tree.dynamics.push_back(std::move(dynamic));
    context.facts->hasDynamicNodes = true;
}

// Makes the item of the expression in [start, end). It belongs to no branch: the caller makes it a
// condition.
std::uint32_t RE_Grammar::readDynamicCondition(std::size_t start, std::size_t end) {
    const std::uint32_t item = tree.add(RE_Syntax_Kind::evaluate, static_cast<std::uint32_t>(start), flags());
    tree[item].payload = static_cast<std::uint32_t>(tree.dynamics.size());
    tree[item].end = static_cast<std::uint32_t>(end);
    tree.dynamics.push_back(compileCondition(context, text + start, end - start));
    context.meter.ask();
    context.facts->hasDynamicNodes = true;
    return item;
}
