// Reading mode letters, and the pass that pairs brackets.
#include "regexp/parser/brackets.h"

namespace {

RE_Flags modeFlag(char16_t letter) {
    switch (letter) {
        case u'i':
            return RE_FLAG_IGNORE_CASE;
        case u's':
            return RE_FLAG_DOT_ALL;
        case u'm':
            return RE_FLAG_LINE_ANCHORS;
        case u'x':
            return RE_FLAG_FREE_SPACING;
        case u'e':
            return RE_FLAG_EVALUATE;
        default:
            return 0;
    }
}

}  // namespace

// The warnings tell a list that went wrong after valid letters from one that never began.
RE_Modes readModes(const char16_t* text, std::size_t length, std::size_t at, RE_Flags flags) {
    RE_Modes modes{flags, at, RE_WARNING_NONE};
    bool letters = false;
    bool minus = false;
    for (; modes.end < length; ++modes.end) {
        const char16_t unit = text[modes.end];
        if (const RE_Flags flag = modeFlag(unit)) {
            modes.flags = minus ? modes.flags & ~flag : modes.flags | flag;
            letters = true;
        } else if (unit == u'-' && !minus) {
            minus = true;
        } else if (unit == u'-') {
            modes.problem = letters ? RE_WARNING_SECOND_MINUS : RE_WARNING_BAD_MODE;
            return modes;
        } else if (letters && (unit == u':' || unit == u')')) {
            return modes;
        } else {
            break;
        }
    }
    modes.problem = letters ? RE_WARNING_BAD_MODE_AFTER_LETTERS : RE_WARNING_BAD_MODE;
    return modes;
}

RE_Brackets::RE_Brackets(const char16_t* pattern, std::size_t units, RE_Flags flags,
                         RE_Scratch_Memory* memory, RE_Compile_Meter& meter)
    : text(pattern), length(units), closings(units, none, memory), open(memory) {
    pair(flags, meter);
    // The stack goes back to the scratch memory: nothing reads it any more.
    open.clear();
    open.shrink_to_fit();
}

// Plain units are skipped in a tight loop, since they are most of a pattern.
void RE_Brackets::pair(RE_Flags flags, RE_Compile_Meter& meter) {
    freeSpacing = (flags & RE_FLAG_FREE_SPACING) != 0;
    std::size_t at = 0;
    for (;;) {
        // A `#` is plain unless spacing is free; `(` is never plain, so that comparing with it changes
        // nothing.
        const char16_t comment = freeSpacing ? u'#' : u'(';
        while (at < length && isPlainUnit(text[at]) && text[at] != comment) {
            ++at;
        }
        if (at >= length) {
            return;
        }
        meter.spend();
        specialUnits += text[at] != u')' ? 1 : 0;
        switch (text[at]) {
            case u'\\':
                at += 2;
                break;
            case u'[':
                at = inComment() ? at + 1 : skipSet(at);
                break;
            case u'(':
                at = openGroup(at);
                break;
            case u')':
                at = closeGroup(at);
                break;
            case u'#':
                at = skipComment(at);
                break;
            default:
                ++at;
                break;
        }
    }
}

// Of all modes only free spacing is tracked, since it alone decides what counts. Modes are not looked for
// within an expression or a condition. Returns the index at which pairing continues: past the marks of the
// group, so that these are not taken for anything else.
std::size_t RE_Brackets::openGroup(std::size_t at) {
    const bool isCondition = !open.empty() && open.back().position + 2 == at && text[at - 1] == u'?';
    open.push_back({static_cast<std::uint32_t>(at), freeSpacing, inComment(), inExpression()});
    if (inComment() || inExpression() || at + 2 >= length || text[at + 1] != u'?') {
        return at + 1;
    }
    if (text[at + 2] == u'@' || (text[at + 2] == u'?' && !isCondition)) {
        open.back().expression = true;
        return at + 3;
    }
    if (isCondition) {
        return at + 2;
    }
    const RE_Modes modes = readModes(text, length, at + 2, freeSpacing ? RE_FLAG_FREE_SPACING : 0);
    if (text[at + 2] == u'#') {
        open.back().comment = true;
        // Inside of a comment group a `#` begins nothing. The mode returns when the group closes.
        freeSpacing = false;
        return at + 3;
    }
    if (modes.problem != RE_WARNING_NONE) {
        return at + 2;
    }
    // `(?x)` lasts beyond its own parenthesis, up to the end of the group around it; `(?x:` ends with the
    // group.
    const bool changed = (modes.flags & RE_FLAG_FREE_SPACING) != 0;
    if (text[modes.end] == u')') {
        open.back().freeSpacingAfter = changed;
    } else {
        freeSpacing = changed;
    }
    return modes.end;
}

// A closing parenthesis without a partner is skipped; the grammar reports it.
std::size_t RE_Brackets::closeGroup(std::size_t at) {
    if (!open.empty()) {
        closings[open.back().position] = static_cast<std::uint32_t>(at);
        freeSpacing = open.back().freeSpacingAfter;
        open.pop_back();
    }
    return at + 1;
}

// A `]` right after `[` or `[^` is a member. Where one set finds no end, no later one can: it would need a
// `]` that this one would have met. So the scan is not repeated, which keeps a pattern of many `[` linear.
std::size_t RE_Brackets::skipSet(std::size_t at) {
    if (setsExhausted) {
        return at + 1;
    }
    std::size_t i = at + 1;
    i += i < length && text[i] == u'^' ? 1 : 0;
    i += i < length && text[i] == u']' ? 1 : 0;
    while (i < length && text[i] != u']') {
        i += text[i] == u'\\' ? 2 : 1;
    }
    if (i >= length) {
        setsExhausted = true;
        return at + 1;
    }
    closings[at] = static_cast<std::uint32_t>(i);
    return i + 1;
}

// Past the line feed that ends the comment.
std::size_t RE_Brackets::skipComment(std::size_t at) const {
    while (at < length && text[at] != u'\n') {
        ++at;
    }
    return at + 1;
}

std::uint32_t RE_Brackets::nextBrace(std::size_t from, RE_Flags flags) {
    const bool hasComments = (flags & RE_FLAG_FREE_SPACING) != 0;
    Brace& brace = braces[hasComments ? 1 : 0];
    // No brace lies between the earlier query and its answer. An answer of `none` is greater than every
    // position, so it serves all later queries.
    if (from >= brace.from && from <= brace.at) {
        return brace.at;
    }
    std::size_t i = from;
    while (i < length && text[i] != u'}') {
        i = hasComments && text[i] == u'#' ? skipComment(i) : i + (text[i] == u'\\' ? 2 : 1);
    }
    brace = {from, i < length ? static_cast<std::uint32_t>(i) : none};
    return brace.at;
}
