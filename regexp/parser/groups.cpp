// Everything that a parenthesis can open.
#include "regexp/parser/escapes.h"
#include "regexp/parser/grammar.h"
#include "regexp/parser/modes.h"
#include "regexp/parser/names.h"

void RE_Grammar::openFrame(std::uint32_t group, std::uint32_t close, std::size_t contentStart,
                           bool closedBody) {
    const std::uint32_t branch =
        tree.add(RE_Syntax_Kind::sequence, static_cast<std::uint32_t>(contentStart), flags());
    tree.append(group, branch);
    frames.push_back({group, branch, close, flags(), false, false, closedBody, Last::nothing});
    closedDepth += closedBody ? 1 : 0;
    at = contentStart;
}

// Its items are complete. In a divided conditional the group is the second branch.
void RE_Grammar::endFrame() {
    const Frame& ended = frame();
    tree.close(ended.branch);
    tree.close(ended.group);
    if (ended.divided) {
        tree.close(tree[frames[frames.size() - 2].branch].lastChild);
    }
    frames.pop_back();
}

void RE_Grammar::closeFrame() {
    const Frame closed = frame();
    endFrame();
    closedDepth -= closed.closed ? 1 : 0;
    context.flags = closed.outerFlags;
    at = closed.close + 1;
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

// An unclosed conditional with an unclosed condition is one problem, not two.
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

void RE_Grammar::readCapture(std::uint32_t close) {
    addItem(makesTokens ? RE_Syntax_Kind::capture : RE_Syntax_Kind::group, at);
    const std::uint32_t group = tree[frame().branch].lastChild;
    if (makesTokens) {
        tree[group].number = tree.groupCount++;
    }
    openFrame(group, close, at + 1, false);
}

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

// The mark at `mark` is one of `=`, `!`, `<=`, `<!`.
void RE_Grammar::readLookaround(std::size_t mark, std::uint32_t close) {
    RE_Syntax look{};
    look.kind = RE_Syntax_Kind::look;
    look.behind = text[mark] == u'<';
    const std::size_t sign = look.behind ? mark + 1 : mark;
    look.negative = text[sign] == u'!';
    openClosedBody(look, close, sign + 1);
}

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

void RE_Grammar::dropGroup(std::uint32_t close) {
    frame().last = Last::dropped;
    at = close + std::size_t{1};
}
