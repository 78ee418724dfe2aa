// What each piece writes, and how tightly the result holds together.
//
// Two rules keep a piece from changing its meaning: an operand is grouped (`bindAtLeast`) before anything
// is placed beside it that could take it apart, and what depends on flags is written with its mode, as
// `(?s:.)` for the dot.
#include "regexp/builder/algebra.h"

#include "regexp/builder/quote.h"

#include <string>
#include <utility>

namespace RE_Builder_Space {

/// Makes builders out of text and other builders. A class, so that one friend of `RE_Builder` may see its
/// text and its marks; every function below goes through it.
struct RE_Composer {
    using Binding = RE_Builder::Binding;
    using Kind = RE_Builder::Mark::Kind;

    static RE_Builder make(std::u16string text, Binding binding) {
        RE_Builder made;
        made.text = std::move(text);
        made.binding = binding;
        return made;
    }
    static RE_Builder item(std::u16string_view text) { return make(std::u16string(text), Binding::item); }

    /// `open` begins a group that holds any body, so nothing has to be grouped. With an empty `close` the
    /// rest is to be added.
    static RE_Builder enclosed(std::u16string_view open, RE_Builder body, std::u16string_view close = u")") {
        body.encloseIn(open, close);
        return body;
    }
    /// The mark is at the parenthesis, in front of all marks of the body.
    static RE_Builder captured(RE_Builder body, const RE_Token& token) {
        body.encloseIn(u"(", u")");
        body.marks.insert(body.marks.begin(), {Kind::opens, 0, token.identity});
        return body;
    }
    /// The result binds as alternatives even when there is one, which costs a group at most. Foreign text
    /// is grouped: it may change modes up to its end, which must not reach the next alternative.
    static RE_Builder alternatives(std::span<const RE_Builder> all) {
        RE_Builder result;
        for (const RE_Builder& alternative : all) {
            result.text += result.binding == Binding::alternatives ? u"|" : u"";
            RE_Builder next = alternative;
            next.bindAtLeast(Binding::alternatives);
            result.append(std::move(next));
            result.binding = Binding::alternatives;
        }
        return result;
    }
    /// The result is a sequence: a second quantifier would otherwise be read as a part of the first.
    static RE_Builder repeated(RE_Builder body, std::u16string_view quantifier, RE_GREED greed) {
        body.bindAtLeast(Binding::item);
        body.text += quantifier;
        body.text += greed == RE_LAZY ? u"?" : greed == RE_POSSESSIVE ? u"+" : u"";
        body.binding = Binding::sequence;
        return body;
    }
    /// `text` is what precedes the reference; the mark at its end is the place of the reference.
    static RE_Builder reference(std::u16string_view text, const RE_Token& token, Kind kind) {
        RE_Builder made = item(text);
        made.marks.push_back({kind, text.size(), token.identity});
        return made;
    }
    /// `condition` is everything up to the first branch without the parenthesis that closes the condition.
    /// An empty second branch is left out. Alternatives in a branch are grouped: a bar would divide the
    /// branches.
    static RE_Builder conditional(RE_Builder condition, RE_Builder yes, RE_Builder no) {
        condition.text += u')';
        yes.bindAtLeast(Binding::sequence);
        no.bindAtLeast(Binding::sequence);
        condition.append(std::move(yes));
        if (!no.text.empty() || !no.marks.empty()) {
            condition.text += u'|';
            condition.append(std::move(no));
        }
        condition.text += u')';
        return condition;
    }
    /// A template is quoted already, for this very place.
    static RE_Builder evaluated(std::u16string_view open, const RE_Template& what,
                                std::u16string_view close) {
        return enclosed(open, what.written, close);
    }
};

namespace {

using Binding = RE_Composer::Binding;

// The letters are those that the parser reads (`readModes`).
std::u16string_view modeLetter(RE_MODE mode) {
    switch (mode) {
        case RE_MODE_IGNORE_CASE:
            return u"i";
        case RE_MODE_DOT_ALL:
            return u"s";
        case RE_MODE_LINE_ANCHORS:
            return u"m";
        case RE_MODE_FREE_SPACING:
            return u"x";
        case RE_MODE_EVALUATE:
            return u"e";
    }
    return {};
}

}  // namespace

// A literal of one unit can be repeated as it is; several units, or none, are a sequence.
RE_Builder literal(std::u16string_view text) {
    std::u16string quoted;
    for (const char16_t unit : text) {
        appendQuoted(quoted, unit);
    }
    return RE_Composer::make(std::move(quoted), text.size() == 1 ? Binding::item : Binding::sequence);
}

// The mode is part of the piece: whether a plain dot matches a line feed is up to the flags.
RE_Builder any_unit() {
    return RE_Composer::item(u"(?s:.)");
}

RE_Builder any_but_line_feed() {
    return RE_Composer::item(u"(?-s:.)");
}

// Empty brackets would be no set, as a `]` at the front is a member.
RE_Builder one_of(const RE_SetItem& set) {
    return RE_Composer::item(set.text().empty() ? u"[^\\s\\S]" : u"[" + set.text() + u"]");
}

RE_Builder none_of(const RE_SetItem& set) {
    return set.text().empty() ? any_unit() : RE_Composer::item(u"[^" + set.text() + u"]");
}

// For the same reason the anchors carry theirs.
RE_Builder subject_start() {
    return RE_Composer::item(u"(?-m:^)");
}

RE_Builder subject_end() {
    return RE_Composer::item(u"(?-m:$)");
}

RE_Builder line_start() {
    return RE_Composer::item(u"(?m:^)");
}

RE_Builder line_end() {
    return RE_Composer::item(u"(?m:$)");
}

RE_Builder word_start() {
    return RE_Composer::item(u"\\<");
}

RE_Builder word_end() {
    return RE_Composer::item(u"\\>");
}

RE_Builder pos_ahead(const RE_Builder& body) {
    return RE_Composer::enclosed(u"(?=", body);
}

RE_Builder neg_ahead(const RE_Builder& body) {
    return RE_Composer::enclosed(u"(?!", body);
}

RE_Builder pos_behind(const RE_Builder& body) {
    return RE_Composer::enclosed(u"(?<=", body);
}

RE_Builder neg_behind(const RE_Builder& body) {
    return RE_Composer::enclosed(u"(?<!", body);
}

// An assertion that never holds is what is left of a choice of nothing.
RE_Builder either(std::span<const RE_Builder> alternatives) {
    return alternatives.empty() ? RE_Composer::item(u"(?!)") : RE_Composer::alternatives(alternatives);
}

RE_Builder kleene(const RE_Builder& body, RE_GREED greed) {
    return RE_Composer::repeated(body, u"*", greed);
}

RE_Builder one_or_more(const RE_Builder& body, RE_GREED greed) {
    return RE_Composer::repeated(body, u"+", greed);
}

RE_Builder optional(const RE_Builder& body, RE_GREED greed) {
    return RE_Composer::repeated(body, u"?", greed);
}

// `{n}`, `{n,}` or `{n,m}`, the shortest that says it.
RE_Builder quantify(const RE_Builder& body, RE_Bounds bounds, RE_GREED greed) {
    std::u16string text = u"{" + decimal(bounds.minimum());
    if (bounds.maximum() == RE_Bounds::unlimited) {
        text += u',';
    } else if (bounds.maximum() != bounds.minimum()) {
        text += u',' + decimal(bounds.maximum());
    }
    return RE_Composer::repeated(body, text + u'}', greed);
}

RE_Builder group(const RE_Builder& body) {
    return RE_Composer::enclosed(u"(?:", body);
}

RE_Builder atomic(const RE_Builder& body) {
    return RE_Composer::enclosed(u"(?>", body);
}

RE_Builder with_mode(RE_MODE mode, const RE_Builder& body) {
    return RE_Composer::enclosed(u"(?" + std::u16string(modeLetter(mode)) + u":", body);
}

RE_Builder without_mode(RE_MODE mode, const RE_Builder& body) {
    return RE_Composer::enclosed(u"(?-" + std::u16string(modeLetter(mode)) + u":", body);
}

RE_Builder capture(const RE_Builder& body) {
    return RE_Composer::enclosed(u"(", body);
}

RE_Builder capture(const RE_Token& token, const RE_Builder& body) {
    return RE_Composer::captured(body, token);
}

RE_Builder capture(RE_Token_Name name, const RE_Builder& body) {
    return RE_Composer::enclosed(u"(?<" + std::u16string(name.text()) + u">", body);
}

RE_Builder backreference(const RE_Token& token) {
    return RE_Composer::reference(u"", token, RE_Composer::Kind::refers);
}

RE_Builder backreference(RE_Token_Name name) {
    return RE_Composer::item(u"\\k<" + std::u16string(name.text()) + u">");
}

// The openings below leave the condition unclosed: `conditional` closes it.
RE_Builder if_token(const RE_Token& token, const RE_Builder& yes, const RE_Builder& no) {
    return RE_Composer::conditional(RE_Composer::reference(u"(?(", token, RE_Composer::Kind::tests), yes, no);
}

RE_Builder if_token(RE_Token_Name name, const RE_Builder& yes, const RE_Builder& no) {
    return RE_Composer::conditional(RE_Composer::item(u"(?(" + std::u16string(name.text())), yes, no);
}

RE_Builder if_pos_ahead(const RE_Builder& body, const RE_Builder& yes, const RE_Builder& no) {
    return RE_Composer::conditional(RE_Composer::enclosed(u"(?(?=", body, u""), yes, no);
}

RE_Builder if_neg_ahead(const RE_Builder& body, const RE_Builder& yes, const RE_Builder& no) {
    return RE_Composer::conditional(RE_Composer::enclosed(u"(?(?!", body, u""), yes, no);
}

RE_Builder if_pos_behind(const RE_Builder& body, const RE_Builder& yes, const RE_Builder& no) {
    return RE_Composer::conditional(RE_Composer::enclosed(u"(?(?<=", body, u""), yes, no);
}

RE_Builder if_neg_behind(const RE_Builder& body, const RE_Builder& yes, const RE_Builder& no) {
    return RE_Composer::conditional(RE_Composer::enclosed(u"(?(?<!", body, u""), yes, no);
}

RE_Builder evaluate(const RE_Template& script) {
    return RE_Composer::evaluated(u"(?@", script, u")");
}

// The backslash keeps the two question marks from beginning a trigraph.
RE_Builder dynamic_expression(const RE_Template& expression) {
    return RE_Composer::evaluated(u"(?\?@", expression, u")");
}

RE_Builder dynamic_text(const RE_Template& text) {
    return RE_Composer::evaluated(u"(?\?", text, u")");
}

RE_Builder if_expression(const RE_Template& expression, const RE_Builder& yes, const RE_Builder& no) {
    return RE_Composer::conditional(RE_Composer::evaluated(u"(?(?@", expression, u""), yes, no);
}

}  // namespace RE_Builder_Space
