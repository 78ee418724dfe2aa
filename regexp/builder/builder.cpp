// The values of the builder language: builders, their tokens and their templates.
//
// References to tokens are left out of a builder's text, since the groups before them get their numbers
// only once the whole pattern is known. They are marks, which move along with the text, and are put in when
// the pattern text is requested.
#include "regexp/builder/builder.h"

#include "regexp/builder/draft.h"
#include "regexp/builder/template.h"
#include "regexp/builder/tokens.h"
#include "regexp/eval/context.h"

#include <algorithm>
#include <atomic>
#include <string>

namespace RE_Builder_Space {
namespace {

// What would pair with a parenthesis around the text, begin a reference or a comment, or, as the first
// unit, tell an expression from a text. A backslash before each is taken away again when the text is read.
// A `]` alone pairs with nothing.
constexpr std::u16string_view withMeaning = u"\\$()[#@";

}  // namespace

RE_Builder::RE_Builder(std::u16string pattern) : text(std::move(pattern)), binding(Binding::foreign) {}

// Without references nothing depends on numbers, and the text is the pattern.
std::u16string RE_Builder::pattern() const {
    return drawn(nullptr);
}

std::u16string RE_Builder::drawn(RE_Compile_Meter* meter) const {
    const bool refers =
        std::ranges::any_of(marks, [](const Mark& mark) { return mark.kind != Mark::Kind::opens; });
    return refers ? Draft(*this, meter).finished() : text;
}

std::optional<std::size_t> RE_Builder::tokenIndex(const RE_Token& token) const {
    RE_Context context;
    return tokenIndex(token, RE_DEFAULT_FLAGS, &context);
}

std::optional<std::size_t> RE_Builder::tokenIndex(const RE_Token& token, RE_Flags flags,
                                                  RE_Context* context) const {
    return Draft(*this).lastIndexOf(token.identity, flags, context);
}

std::optional<std::size_t> RE_Builder::tokenIndex(RE_Token_Name name) const {
    RE_Context context;
    return tokenIndex(name, RE_DEFAULT_FLAGS, &context);
}

std::optional<std::size_t> RE_Builder::tokenIndex(RE_Token_Name name, RE_Flags flags,
                                                  RE_Context* context) const {
    return Draft(*this).indexOf(name.text(), flags, context);
}

// An empty builder is neutral: joining it must not make a sequence of what was an item. Alternatives and
// foreign text are grouped before anything is placed beside them.
RE_Builder& RE_Builder::operator+=(RE_Builder next) {
    if (text.empty() && marks.empty()) {
        *this = std::move(next);
    } else if (!next.text.empty() || !next.marks.empty()) {
        bindAtLeast(Binding::sequence);
        next.bindAtLeast(Binding::sequence);
        append(std::move(next));
        binding = Binding::sequence;
    }
    return *this;
}

void RE_Builder::bindAtLeast(Binding needed) {
    if (binding < needed) {
        encloseIn(u"(?:", u")");
    }
}

// A comment at the end of a foreign text, which is one only where spacing is free, must not take in what
// closes the group. So free spacing is turned on for the rest of the group, and the line is ended: in a
// comment that ends the comment (and the `(?x)` is part of it), elsewhere it is nothing.
void RE_Builder::encloseIn(std::u16string_view open, std::u16string_view close) {
    const bool mayEndInComment = binding == Binding::foreign && text.find(u'#') != text.npos;
    text.insert(0, open);
    text += mayEndInComment ? u"(?x)\n" : u"";
    text += close;
    for (Mark& mark : marks) {
        mark.at += open.size();
    }
    binding = Binding::item;
}

void RE_Builder::append(RE_Builder next) {
    for (Mark& mark : next.marks) {
        mark.at += text.size();
    }
    marks.insert(marks.end(), next.marks.begin(), next.marks.end());
    text += next.text;
}

// Identities are unique in the process, whatever thread makes them. 0 is no token's.
RE_Token::RE_Token() {
    static std::atomic<std::uint64_t> last{0};
    identity = ++last;
}

RE_Template::RE_Template(std::u16string_view text) {
    for (const char16_t unit : text) {
        written.text += withMeaning.find(unit) != withMeaning.npos ? u"\\" : u"";
        written.text += unit;
    }
}

// No text, only a mark: the reference is written once the token's number is known.
RE_Template::RE_Template(const RE_Token& token) {
    written.marks.push_back({RE_Builder::Mark::Kind::inserts, 0, token.identity});
}

RE_Template RE_Template::named(RE_Token_Name name) {
    RE_Template made;
    made.written.text = u"$<" + std::u16string(name.text()) + u">";
    return made;
}

RE_Template RE_Template::matched() {
    RE_Template made;
    made.written.text = u"$&";
    return made;
}

RE_Template RE_Template::before() {
    RE_Template made;
    made.written.text = u"$`";
    return made;
}

RE_Template RE_Template::after() {
    RE_Template made;
    made.written.text = u"$'";
    return made;
}

RE_Template& RE_Template::operator+=(const RE_Template& next) {
    written.append(next.written);
    return *this;
}

}  // namespace RE_Builder_Space
