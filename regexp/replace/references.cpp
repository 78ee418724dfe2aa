// References to tokens and to the text around and in the match.
//
// A reference never fails: where a match has no such text, the reference is written as it is in the
// replacement, or is empty. All pieces are read from the subject, so this needs results whose subject is
// still there.
#include "regexp/base/insert_text.h"
#include "regexp/builder/builder.h"
#include "regexp/eval/context.h"
#include "regexp/eval/evaluation_io.h"
#include "regexp/eval/evaluation_tokens.h"
#include "regexp/nodes/label_text.h"
#include "regexp/replace/replace_nodes.h"
#include "regexp/state/results.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace {

std::size_t subjectLength(const RE_Results& results) {
    return static_cast<std::size_t>(results.subjectEnd - results.subjectBegin);
}

// Empty where the part is not within the subject: results of narrow text keep none. Checked without a sum
// that could wrap.
std::u16string_view subjectPart(const RE_Results& results, std::size_t start, std::size_t length) {
    const std::size_t whole = subjectLength(results);
    const bool inside = start <= whole && length <= whole - start;
    return inside ? std::u16string_view(results.subjectBegin + start, length) : std::u16string_view();
}

std::u16string_view textBefore(const RE_Results& results) {
    return subjectPart(results, 0, results.matchStart);
}

std::u16string_view matchedText(const RE_Results& results) {
    return subjectPart(results, results.matchStart, results.matchLength);
}

std::u16string_view textAfter(const RE_Results& results) {
    const std::size_t end = results.matchStart + results.matchLength;
    const std::size_t whole = subjectLength(results);
    return end <= whole ? subjectPart(results, end, whole - end) : std::u16string_view();
}

// Tokens are null when there was no memory for them.
std::size_t tokensInEffect(const RE_Results& results) {
    return results.tokens != nullptr ? results.tokens->count : 0;
}

std::u16string decimal(std::size_t number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

// A reference by name as a replacement writes it.
std::u16string bracketed(std::u16string_view name) {
    return u"$<" + std::u16string(name) + u">";
}

// The builder carries the reference as text, for hosts that name or show the variable by it. It is no
// pattern, and nothing in it is quoted.
RE_Evaluation_IO* makeVariable(RE_Context* context, const std::string& stem, const std::u16string& text) {
    return context->create_unique_var(stem.c_str(), RE_Builder_Space::RE_Builder(text));
}

}  // namespace

void RE_Replace_Evalable::register_token(RE_Evaluation_Tokens* tokens) const {
    tokens->add(this);
}

void RE_Replace_Evalable::append_fcn_text(RE_Evaluation_IO* out, const RE_Evaluation_Tokens* tokens) const {
    out->append(tokens->get_variable(this));
}

RE_Replace_Token::RE_Replace_Token(RE_Replace_Node* previous, std::size_t tokenNumber) : token(tokenNumber) {
    attach(previous);
}

// A number beyond the tokens in effect loses its last digits until it names one: they are text of their
// own. They are inserted one by one at the same place, in front of those that came before, which restores
// their order. A number has at most twenty digits. Where no digit is left, the `$` is text as well.
char16_t* RE_Replace_Token::build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                        RE_Results* results) const {
    RE_Piece_Writer writer(buffer, length, capacity);
    const std::size_t place = writer.end();
    std::size_t remaining = token;
    for (; remaining > tokensInEffect(*results); remaining /= 10) {
        const auto digit = static_cast<char16_t>(u'0' + remaining % 10);
        writer.insert(place, {&digit, 1});
    }
    if (remaining == 0) {
        writer.insert(place, u"$");
    } else {
        const RE_TokenInfo& info = *results->tokens->get(remaining - 1);
        writer.insert(place, subjectPart(*results, info.start, info.length));
    }
    return writer.release();
}

void RE_Replace_Token::graph(std::string& out, std::size_t number) const {
    appendGraphNode(out, number, "Token #" + std::to_string(token));
}

RE_Replace_Evalable* RE_Replace_Token::copy() const {
    return new RE_Replace_Token(nullptr, token);
}

// References of different classes are never the same: each class answers for its own payload only.
bool RE_Replace_Token::is_same(const RE_Replace_Evalable* other) const {
    return other != nullptr && other->isToken(token);
}

RE_Evaluation_IO* RE_Replace_Token::create_variable(RE_Context* context) const {
    return makeVariable(context, "token_" + std::to_string(token), u"$" + decimal(token));
}

// The name is terminated because tokens are found by a terminated name. It is attached last: the allocation
// may throw.
RE_Replace_Named_Token::RE_Replace_Named_Token(RE_Replace_Node* previous, std::u16string_view tokenName)
    : nameLength(tokenName.size()),
      name(static_cast<char16_t*>(utMallocWithCheck((tokenName.size() + 1) * sizeof(char16_t)))) {
    std::copy(tokenName.begin(), tokenName.end(), name);
    name[nameLength] = u'\0';
    attach(previous);
}

RE_Replace_Named_Token::~RE_Replace_Named_Token() {
    utFree(name);
}

char16_t* RE_Replace_Named_Token::build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                              RE_Results* results) const {
    RE_Piece_Writer writer(buffer, length, capacity);
    const RE_TokenInfo* const info = results->tokens != nullptr ? results->tokens->get(name) : nullptr;
    if (info != nullptr) {
        writer.append(subjectPart(*results, info->start, info->length));
    } else {
        // No group of this name: the reference stays as it was written.
        writer.append(u"$<");
        writer.append({name, nameLength});
        writer.append(u">");
    }
    return writer.release();
}

void RE_Replace_Named_Token::graph(std::string& out, std::size_t number) const {
    appendGraphNode(out, number, "Token <" + labelText(name, nameLength) + ">");
}

RE_Replace_Evalable* RE_Replace_Named_Token::copy() const {
    return new RE_Replace_Named_Token(nullptr, {name, nameLength});
}

bool RE_Replace_Named_Token::is_same(const RE_Replace_Evalable* other) const {
    return other != nullptr && other->isTokenNamed({name, nameLength});
}

// Names are ASCII, as the reader accepts no others, so narrowing loses nothing.
RE_Evaluation_IO* RE_Replace_Named_Token::create_variable(RE_Context* context) const {
    std::string stem(nameLength, '\0');
    std::transform(name, name + nameLength, stem.begin(),
                   [](char16_t unit) { return static_cast<char>(unit); });
    return makeVariable(context, stem, bracketed({name, nameLength}));
}

namespace {

/// What there is to say of a kind of special reference.
struct Special {
    char16_t sign;
    const char* variable;
    const char* label;
};

// By kind: the order is that of `RE_Replace_Special::Kind`.
constexpr std::array<Special, 4> specials = {{
    {u'`', "former", "Text before the match"},
    {u'0', "matched", "The match"},
    {u'&', "matched", "The match"},
    {u'\'', "latter", "Text after the match"},
}};

}  // namespace

RE_Replace_Special::RE_Replace_Special(RE_Replace_Node* previous, Kind specialKind) : kind(specialKind) {
    attach(previous);
}

char16_t* RE_Replace_Special::build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                          RE_Results* results) const {
    RE_Piece_Writer writer(buffer, length, capacity);
    switch (kind) {
        case before:
            writer.append(textBefore(*results));
            break;
        case match:
        case match_ampersand:
            writer.append(matchedText(*results));
            break;
        case after:
            writer.append(textAfter(*results));
            break;
    }
    return writer.release();
}

void RE_Replace_Special::graph(std::string& out, std::size_t number) const {
    appendGraphNode(out, number, specials[kind].label);
}

RE_Replace_Evalable* RE_Replace_Special::copy() const {
    return new RE_Replace_Special(nullptr, kind);
}

bool RE_Replace_Special::is_same(const RE_Replace_Evalable* other) const {
    return other != nullptr && other->isSpecial(kind);
}

RE_Evaluation_IO* RE_Replace_Special::create_variable(RE_Context* context) const {
    const Special& special = specials[kind];
    return makeVariable(context, special.variable, std::u16string{u'$', special.sign});
}
