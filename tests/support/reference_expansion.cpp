// The language of replacements, as far as random patterns use it. What would raise a warning is refused, as elsewhere
// in the reference: what it degrades to is pinned by the tables.
#include "tests/support/reference_expansion.h"

#include "tests/support/expression_script.h"
#include "tests/support/reference_brackets.h"
#include "tests/support/reference_units.h"

#include <algorithm>

namespace corvane_tests::reference {
namespace {

using Part = TextPart;

void addLiteral(std::vector<Part>& parts, std::u16string_view text) {
    if (parts.empty() || parts.back().kind != Part::Kind::Literal) {
        parts.push_back({Part::Kind::Literal, u""});
    }
    parts.back().text += text;
}

// Texts are put together unit by unit, so a character of two units is beyond the reference here.
void addCharacter(std::vector<Part>& parts, char32_t value) {
    if (value > 0xFFFF) {
        throw Unreadable();
    }
    const auto unit = static_cast<char16_t>(value);
    addLiteral(parts, {&unit, 1});
}

// After the sign. What is not a reference would be a warning.
Part readReference(Reader& reader, bool mayEvaluate) {
    if (reader.seesDigit() && !reader.sees(u"0")) {
        std::u16string digits;
        while (reader.seesDigit()) {
            digits += reader.take();
        }
        return {Part::Kind::Number, digits};
    }
    if (reader.takes(u"<")) {
        return {Part::Kind::Name, reader.name(u">")};
    }
    if (reader.takes(u"{") && mayEvaluate) {
        const std::u16string_view text = reader.take(expressionEnd(reader.rest()));
        reader.need(u"}");
        return {Part::Kind::Expression, std::u16string(text)};
    }
    const char16_t sign = reader.take();
    if (std::u16string_view(u"0&`'").find(sign) == std::u16string_view::npos) {
        throw Unreadable();
    }
    return {Part::Kind::Special, std::u16string(1, sign)};
}

// As many digits as name a token in effect; the rest is text, and so is all of it without any.
std::u16string expandNumber(std::u16string digits, const Place& place) {
    std::u16string rest;
    for (; !digits.empty() && digits.size() < 10; digits.pop_back()) {
        size_t number = 0;
        for (const char16_t digit : digits) {
            number = number * 10 + static_cast<size_t>(digit - u'0');
        }
        if (const auto token = place.numbered(number - 1)) {
            return *token + rest;
        }
        rest.insert(rest.begin(), digits.back());
    }
    return u"$" + digits + rest;
}

// A name that no token has is written as it is; an expression without an answer makes the whole text fail.
std::optional<std::u16string> expandPart(const Part& part, const Place& place) {
    switch (part.kind) {
        case Part::Kind::Literal:
            return part.text;
        case Part::Kind::Number:
            return expandNumber(part.text, place);
        case Part::Kind::Name:
            return place.named(part.text).value_or(u"$<" + part.text + u">");
        case Part::Kind::Special:
            return place.special(part.text[0]);
        case Part::Kind::Expression:
            return evaluate(part.text, place);
    }
    return std::nullopt;
}

/// The distinct references of an expression, whose other text is of no interest.
std::vector<Part> referencesIn(std::u16string_view expression) {
    std::vector<Part> found;
    Reader reader(expression);
    while (!reader.done()) {
        if (reader.take() == u'$' && (reader.seesDigit() || reader.sees(u"<") || reader.sees(u"&"))) {
            Part part = readReference(reader, false);
            if (std::find(found.begin(), found.end(), part) == found.end()) {
                found.push_back(std::move(part));
            }
        }
    }
    return found;
}

}  // namespace

std::vector<Part> readExpansion(std::u16string_view text, bool mayEvaluate) {
    std::vector<Part> parts;
    Reader reader(text);
    while (!reader.done()) {
        if (reader.takes(u"\\")) {
            addCharacter(parts, escapedCharacter(reader.take(), reader));
        } else if (reader.takes(u"$")) {
            parts.push_back(readReference(reader, mayEvaluate));
        } else {
            addLiteral(parts, reader.take(1));
        }
    }
    return parts;
}

std::optional<std::u16string> expand(const std::vector<Part>& parts, const Place& place) {
    std::u16string result;
    for (const Part& part : parts) {
        const std::optional<std::u16string> text = expandPart(part, place);
        if (!text) {
            return std::nullopt;
        }
        result += *text;
    }
    return result;
}

std::optional<std::u16string> evaluate(std::u16string_view expression, const Place& place) {
    // A given text is not searched for references: what looks like one in it belongs to a pattern.
    std::vector<std::u16string> texts;
    if (!expression.starts_with(u"=")) {
        for (const Part& reference : referencesIn(expression)) {
            texts.push_back(expandPart(reference, place).value_or(u""));
        }
    }
    return scriptedAnswer(expression, texts);
}

}  // namespace corvane_tests::reference
