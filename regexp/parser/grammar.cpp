// The loop over a pattern, its plain atoms, its escapes and its references. Groups, sets and quantifiers
// have files of their own.
#include "regexp/parser/grammar.h"

#include "regexp/base/within_size.h"
#include "regexp/parser/escapes.h"
#include "regexp/parser/names.h"

#include <algorithm>
#include <string_view>

namespace {

// How many items to reserve, so that a tree is rarely moved while it grows.
constexpr std::size_t usualItems = 8;
// A bar makes a branch and the item it begins with; a quantifier splits a unit off a text and wraps it.
constexpr std::size_t itemsPerMark = 2;
// A stretch of units that is read at once counts as so much less work than items do.
constexpr std::size_t unitsAWork = 16;

}  // namespace

RE_Grammar::RE_Grammar(RE_ParserContext& parserContext, const char16_t* pattern, std::size_t units,
                       bool tokens)
    : context(parserContext),
      text(pattern),
      length(units),
      makesTokens(tokens),
      brackets(pattern, units, parserContext.flags, &parserContext.scratch, parserContext.meter),
      tree(usualItems + itemsPerMark * brackets.marks(), &parserContext.scratch),
      frames(&parserContext.scratch),
      knownSets{RE_Scratch_Map<std::u16string_view, std::uint32_t>(&parserContext.scratch),
                RE_Scratch_Map<std::u16string_view, std::uint32_t>(&parserContext.scratch)} {}

RE_Syntax_Tree RE_Grammar::read() {
    const std::uint32_t root = tree.add(RE_Syntax_Kind::group, 0, flags());
    openFrame(root, RE_Brackets::none, 0, false);
    for (;;) {
        at = skipSpacing(text, length, at, flags());
        if (at >= length) {
            break;
        }
        const std::size_t before = at;
        context.meter.workAt(text + at);
        if (at == frame().close) {
            closeFrame();
        } else {
            readUnit();
        }
        noteEnd();
        context.meter.spend(1 + (at - before) / unitsAWork);
    }
    // Frames may be left over: an escape can consume the unit that was to close a group. Their items are
    // complete all the same, and modes need no restoring.
    while (!frames.empty()) {
        tree[frame().group].end = static_cast<std::uint32_t>(length);
        endFrame();
    }
    resolveReferences();
    return std::move(tree);
}

// What was read belongs to the item that a quantifier would repeat, if there is one: a new one, or one that has grown.
void RE_Grammar::noteEnd() {
    const std::uint32_t last = tree[frame().branch].lastChild;
    if (frame().last == Last::item && last != RE_Syntax::none) {
        tree[last].end = static_cast<std::uint32_t>(at);
    }
}

void RE_Grammar::readUnit() {
    switch (text[at]) {
        case u'(':
            readGroup();
            return;
        case u')':
            warnAt(at, RE_WARNING_UNMATCHED_CLOSE);
            addLiteral(u')', at++);
            return;
        case u'[':
            readSet();
            return;
        case u'\\':
            readEscapeAtom();
            return;
        case u'|':
            readBranchBar();
            return;
        case u'.':
            addItem(RE_Syntax_Kind::dot, at++);
            return;
        case u'^':
            addItem(RE_Syntax_Kind::start_anchor, at++);
            return;
        case u'$':
            addItem(RE_Syntax_Kind::end_anchor, at++);
            return;
        case u'*':
        case u'+':
        case u'?':
        case u'{':
            if (!readQuantifier()) {
                addLiteral(text[at], at);
                ++at;
            }
            return;
        default:
            readLiterals();
    }
}

// Takes a whole stretch of plain units at once. Under free spacing only the first, as what follows may be
// spacing or a comment. The first goes through `addLiteral`, which decides whether it may join the item
// before; after that the branch ends in literals of the same modes, so the rest always joins.
void RE_Grammar::readLiterals() {
    addLiteral(text[at], at);
    const char16_t* const second = text + ++at;
    const char16_t* const last = has(RE_FLAG_FREE_SPACING) ? second : text + length;
    const char16_t* end = second;
    while (end < last && isPlainUnit(*end)) {
        ++end;
    }
    if (end != second) {
        tree.extendText(frame().branch, second, static_cast<std::size_t>(end - second), flags());
        lastUnit = static_cast<std::size_t>(end - text) - 1;
        at += static_cast<std::size_t>(end - second);
    }
}

// In a conditional the first bar divides yes from no; further ones are alternatives within the second
// branch, which is why that becomes a group.
void RE_Grammar::readBranchBar() {
    Frame& current = frame();
    tree.close(current.branch);
    if (tree[current.group].kind == RE_Syntax_Kind::conditional && !current.divided) {
        const std::uint32_t second = tree.add(RE_Syntax_Kind::group, static_cast<std::uint32_t>(at), flags());
        tree[second].begin = static_cast<std::uint32_t>(at + 1);
        tree.append(current.group, second);
        current.group = second;
        current.divided = true;
    }
    current.branch = tree.add(RE_Syntax_Kind::sequence, static_cast<std::uint32_t>(at), flags());
    tree.append(current.group, current.branch);
    current.last = Last::nothing;
    ++at;
}

void RE_Grammar::addItem(RE_Syntax_Kind kind, std::size_t position) {
    const std::uint32_t item = tree.add(kind, static_cast<std::uint32_t>(position), flags());
    tree.append(frame().branch, item);
    frame().last = Last::item;
}

// Trap: `last` has to be `item` before the unit may join a text. Joining does not set it, so after a mode
// change or a dropped construct the unit would be out of reach of a quantifier.
void RE_Grammar::addLiteral(char16_t unit, std::size_t position) {
    lastUnit = position;
    if (frame().last == Last::item && tree.extendText(frame().branch, &unit, 1, flags())) {
        return;
    }
    addItem(RE_Syntax_Kind::literal, position);
    tree[tree[frame().branch].lastChild].low = unit;
}

// A character beyond U+FFFF is two units but one item, a group, so that a quantifier repeats both.
void RE_Grammar::addPair(char32_t character, std::size_t position) {
    const char32_t offset = character - 0x10000;
    const char16_t units[] = {static_cast<char16_t>(0xD800 + (offset >> 10)),
                              static_cast<char16_t>(0xDC00 + (offset & 0x3FF))};
    addItem(RE_Syntax_Kind::group, position);
    const std::uint32_t group = tree[frame().branch].lastChild;
    const std::uint32_t branch =
        tree.add(RE_Syntax_Kind::sequence, static_cast<std::uint32_t>(position), flags());
    tree.append(group, branch);
    for (const char16_t unit : units) {
        const std::uint32_t literal =
            tree.add(RE_Syntax_Kind::literal, static_cast<std::uint32_t>(position), flags());
        tree[literal].low = unit;
        tree.append(branch, literal);
    }
    tree.close(branch);
    tree.close(group);
}

void RE_Grammar::addEscaped(char16_t letter) {
    addItem(RE_Syntax_Kind::escaped, at);
    tree[tree[frame().branch].lastChild].low = letter;
    at += 2;
}

// Escapes that mean something in a pattern only. All others are shared with sets and replacements:
// `readEscape`.
void RE_Grammar::readEscapeAtom() {
    const char16_t unit = at + 1 < length ? text[at + 1] : u'\0';
    switch (unit) {
        case u'<':
            addItem(RE_Syntax_Kind::start_word, at);
            at += 2;
            return;
        case u'>':
            addItem(RE_Syntax_Kind::end_word, at);
            at += 2;
            return;
        case u'd':
        case u'D':
        case u's':
        case u'S':
        case u'w':
        case u'W':
            addEscaped(unit);
            return;
        case u'k':
            if (readNameReference()) {
                return;
            }
            break;
        default:
            break;
    }
    if (unit >= u'1' && unit <= u'9') {
        readNumberReference();
    } else {
        readCharacter();
    }
}

void RE_Grammar::readCharacter() {
    const RE_Escape escape = readEscape(text, length, at);
    if (escape.problem != RE_WARNING_NONE) {
        warnAt(escape.where, escape.problem);
    }
    if (escape.value > 0xFFFF) {
        addPair(escape.value, at);
    } else {
        addLiteral(static_cast<char16_t>(escape.value), at);
    }
    at = escape.end;
    const bool isMalformedNumber =
        escape.problem == RE_WARNING_BAD_OCTAL || escape.problem == RE_WARNING_BAD_HEX;
    if (isMalformedNumber && at < length && text[at] == u'{') {
        readBracesAsText();
    }
}

// The braces of a malformed number have been warned about, so they must not be read as a quantifier, which
// would warn again or repeat the letter. Text up to the first closing brace, or up to a unit that means
// something else.
void RE_Grammar::readBracesAsText() {
    do {
        addLiteral(text[at], at);
        if (text[at++] == u'}') {
            return;
        }
        at = skipSpacing(text, length, at, flags());
    } while (at < length && (text[at] == u'{' || isPlainUnit(text[at])));
}

// Takes digits as long as the number names a group that was opened before this point, but at least one; the
// rest is literal text. So `\10` is a reference to token 1 and a `0` in a pattern with fewer than ten
// groups so far. The bound also keeps the number from overflowing.
void RE_Grammar::readNumberReference() {
    std::size_t end = at + 1;
    std::uint64_t number = 0;
    do {
        number = number * 10 + static_cast<std::uint64_t>(text[end] - u'0');
        ++end;
    } while (end < length && isAsciiDigit(text[end]) &&
             number * 10 + static_cast<std::uint64_t>(text[end] - u'0') <= tree.groupCount);
    addReference(number - 1, RE_Syntax::none);
    at = end;
}

// False, and nothing read, when no valid name follows: a malformed \k is an escape of k.
bool RE_Grammar::readNameReference() {
    if (at + 2 >= length || text[at + 2] != u'<') {
        return false;
    }
    const RE_Name name = readName(text, length, at + 3, flags());
    if (name.text.empty()) {
        return false;
    }
    tree.names.push_back(name.text);
    addReference(0, static_cast<std::uint32_t>(tree.names.size() - 1));
    at = name.end;
    return true;
}

// The callback comes before the item, once for each construct: a host may throw to refuse it.
void RE_Grammar::addReference(std::uint64_t number, std::uint32_t name) {
    context.context->backreferenceCreationCallback();
    addItem(RE_Syntax_Kind::reference, at);
    RE_Syntax& item = tree[tree[frame().branch].lastChild];
    item.number = number;
    item.payload = name;
    references.push_back({name, number, item.position});
}

// Gathers the slots whose text a reference or a condition may read, ascending and each once: the memo has
// to tell states apart by these texts. Too many cost time, one too few costs answers.
//
// * A name may be used before its group is read, so names are looked up here, at the end. All groups of a
//   name count.
// * A sub-pattern makes no tokens and refers to those of the pattern around it, where an unknown name may
//   well exist.
// * What the host or a dynamic text will read is not known before the search: then every token counts.
void RE_Grammar::resolveReferences() {
    auto& referenced = context.facts->referencedTokens;
    using Group = decltype(context.tokenNames)::const_iterator;  // the first one of its name
    RE_Scratch_List<Group> names(&context.scratch);
    const auto firstToken = [](const Group& group) { return group->second; };
    context.meter.spend(references.size());
    for (const Reference& reference : references) {
        if (reference.name == RE_Syntax::none) {
            if (reference.number < tree.groupCount) {
                referenced.push_back(withinSize(reference.number));
            }
            continue;
        }
        const std::u16string& name = tree.names[reference.name];
        const auto first = context.tokenNames.lower_bound(name);
        if (first == context.tokenNames.end() || first->first != name) {
            if (makesTokens) {
                warnAt(reference.position, RE_WARNING_UNDEFINED_NAME);
            }
        } else {
            names.push_back(first);
        }
    }
    // Each name once, whether one reference reads its groups or thousands do.
    std::ranges::sort(names, {}, firstToken);
    const auto isSame = [&](const auto& one, const auto& other) {
        return firstToken(one) == firstToken(other);
    };
    names.erase(std::unique(names.begin(), names.end(), isSame), names.end());
    for (const auto& group : names) {
        for (auto token = group; token != context.tokenNames.end() && token->first == group->first; ++token) {
            referenced.push_back(token->second);
        }
    }
    for (std::size_t token = 0; token < tree.groupCount && context.facts->hasDynamicNodes; ++token) {
        referenced.push_back(token);
    }
    std::erase_if(referenced, [this](std::size_t token) { return token >= tree.groupCount; });
    std::sort(referenced.begin(), referenced.end());
    referenced.erase(std::unique(referenced.begin(), referenced.end()), referenced.end());
}
