#include "regexp/replace/replacement_reader.h"

#include "regexp/parser/escapes.h"

#include <limits>

std::unique_ptr<RE_Replace_Node> RE_Replacement_Reader::read() {
    literal = new RE_Replace_String(nullptr);
    std::unique_ptr<RE_Replace_Node> head(literal);
    while (at < length) {
        const bool more = at + 1 < length;
        if (more && text[at] == u'\\') {
            readEscapedUnit();
        } else if (!more || text[at] != u'$' || !readReference()) {
            readLiteral();
        }
    }
    return head;
}

// Each of the readers leaves `at` alone unless there is a reference of its kind.
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
// token is known only when a match is there, so the tokens of all of them count as referenced.
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

// Blanks in the brackets (free spacing) are not counted when reading goes on: as many units of the
// reference's end as there are blanks are read again as text.
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
    at = close + 1;
    return true;
}

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
    RE_Replace_Node* const node = new Node(literal, arguments...);
    literal = new RE_Replace_String(node);
}
