// One loop over units: escapes, references and plain text. A new kind of reference is a case of
// `readReference`.
#include "regexp/replace/replacement_reader.h"

#include "regexp/parser/escapes.h"

#include <limits>

std::unique_ptr<RE_Replace_Node> RE_Replacement_Reader::read() {
    // The head owns the chain from the start, so an exception of the host leaks nothing.
    literal = new RE_Replace_String(nullptr);
    std::unique_ptr<RE_Replace_Node> head(literal);
    while (at < length) {
        // A backslash or a `$` at the very end has nothing to combine with and is text.
        const bool more = at + 1 < length;
        context.meter.workAt(text + at);
        context.meter.spend();
        if (more && text[at] == u'\\') {
            readEscapedUnit();
        } else if (!more || text[at] != u'$' || !readReference()) {
            readLiteral();
        }
    }
    return head;
}

// Decides by the unit after the `$`.
bool RE_Replacement_Reader::readReference() {
    const char16_t sign = text[at + 1];
    switch (sign) {
        case u'`':
        case u'0':
        case u'&':
        case u'\'':
            return readSpecial(sign);
        case u'<':
            return readName();
        case u'{':
            return readExpression();
        default:
            return isAsciiDigit(sign) && readNumber();
    }
}

bool RE_Replacement_Reader::readSpecial(char16_t sign) {
    using Special = RE_Replace_Special;
    const Special::Kind kind = sign == u'`'   ? Special::before
                               : sign == u'0' ? Special::match
                               : sign == u'&' ? Special::match_ampersand
                                              : Special::after;
    append<Special>(kind);
    context.refersToSurroundings = true;
    ++referenceCount;
    at += 2;
    return true;
}

// Stops before the number would overflow; the digits left are text. Which of its leading digits name the
// token is known only when there is a match, so the tokens of all prefixes of the number count as
// referenced.
bool RE_Replacement_Reader::readNumber() {
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    std::size_t number = 0;
    for (++at; at < length && isAsciiDigit(text[at]); ++at) {
        const auto digit = static_cast<std::size_t>(text[at] - u'0');
        if (number > (most - digit) / 10) {
            break;
        }
        number = number * 10 + digit;
    }
    append<RE_Replace_Token>(number);
    for (std::size_t part = number; part > 0; part /= 10) {
        context.facts->referencedTokens.push_back(part - 1);
    }
    ++referenceCount;
    return true;
}

// Trap, and documented behaviour: spacing within the brackets (free spacing) is not counted when reading
// continues, so as many units of the reference's end as there are spacing units are read again as text.
bool RE_Replacement_Reader::readName() {
    const RE_Name name = names.read(at + 2);
    if (name.text.empty()) {
        return false;
    }
    append<RE_Replace_Named_Token>(name.text);
    context.referencedNames.push_back(name.text);
    ++referenceCount;
    at += name.text.size() + 3;
    return true;
}

// The host is consulted only about an expression that is complete. Where expressions are not allowed,
// warning 17 is followed by 21 for the `$`, which then is text.
bool RE_Replacement_Reader::readExpression() {
    const std::size_t open = at + 1;
    const std::size_t close = braces.closing(open + 1);
    if (close == RE_Brace_Matcher::none) {
        return false;
    }
    if (!context.mayEvaluate()) {
        context.warn(text + open, RE_WARNING_EVALUATION_DISABLED);
        return false;
    }
    append<RE_Replace_Evaluator>(&context, text + open + 1, close - open - 1);
    context.meter.ask();  // the host has been called
    at = close + 1;
    return true;
}

// The escapes of patterns. A character beyond U+FFFF is written as two units.
void RE_Replacement_Reader::readEscapedUnit() {
    const RE_Escape escape = readEscape(text, length, at);
    if (escape.problem != RE_WARNING_NONE) {
        context.warn(text + escape.where, escape.problem);
    }
    if (escape.value > 0xFFFF) {
        const char32_t offset = escape.value - 0x10000;
        literal->append(static_cast<char16_t>(0xD800 + (offset >> 10)));
        literal->append(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
    } else {
        literal->append(static_cast<char16_t>(escape.value));
    }
    at = escape.end;
}

// Takes one unit as text, whatever it is; the unit of a failed reference or escape with its warning.
void RE_Replacement_Reader::readLiteral() {
    if (text[at] == u'$') {
        context.warn(text + at, RE_WARNING_BAD_REFERENCE);
    } else if (text[at] == u'\\') {
        context.warn(text + at, RE_WARNING_TRAILING_BACKSLASH);
    }
    literal->append(text[at]);
    ++at;
}

template <class Node, class... Arguments>
void RE_Replacement_Reader::append(const Arguments&... arguments) {
    context.meter.spendNode();
    RE_Replace_Node* const node = new Node(literal, arguments...);
    literal = new RE_Replace_String(node);
}
