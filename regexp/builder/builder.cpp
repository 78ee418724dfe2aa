// References to tokens are left out of a builder's text, since the groups before them get their numbers only
// once the whole pattern is known. They are put in when the pattern is asked for.
#include "regexp/builder/builder.h"

#include "regexp/builder/tokens.h"
#include "regexp/tree.h"

#include <unordered_map>

namespace RE_Builder_Space {

/// Counts the groups of a builder's text, mark after mark.
class RE_Builder::Numbering {
public:
    explicit Numbering(const RE_Builder& builder) : text(builder.text) {}

    void pass(const Mark& mark) {
        if (mark.kind == Mark::Kind::foreign) {
            opened +=
                RE_Tree(text.data() + mark.at, static_cast<std::size_t>(mark.word), false).getTokenCount();
        } else if (mark.kind == Mark::Kind::opens) {
            latest[mark.word] = ++opened;
        }
    }
    /// The number of the token's latest group, counted from 1; 0 when it has none so far.
    std::uint64_t of(std::uint64_t token) const {
        const auto found = latest.find(token);
        return found == latest.end() ? 0 : found->second;
    }

private:
    const std::u16string& text;
    std::uint64_t opened = 0;
    std::unordered_map<std::uint64_t, std::uint64_t> latest;
};

namespace {

void appendNumber(std::u16string& text, std::uint64_t number) {
    const std::string digits = std::to_string(number);
    text.append(digits.begin(), digits.end());
}

bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

}  // namespace

RE_Builder::RE_Builder(std::u16string pattern) : text(std::move(pattern)), binding(Binding::foreign) {
    if (!text.empty()) {
        marks.push_back({Mark::Kind::foreign, 0, text.size()});
    }
}

std::u16string RE_Builder::pattern() const {
    std::u16string out;
    std::size_t copied = 0;
    Numbering numbering(*this);
    for (const Mark& mark : marks) {
        if (mark.kind == Mark::Kind::opens || mark.kind == Mark::Kind::foreign) {
            // Foreign text is compiled to be counted, which a builder of nothing else is spared.
            if (marks.size() > 1) {
                numbering.pass(mark);
            }
            continue;
        }
        out.append(text, copied, mark.at - copied);
        copied = mark.at;
        const std::uint64_t number = numbering.of(mark.word);
        if (number == 0) {
            out += mark.kind == Mark::Kind::asks ? u"?!" : u"(?!)";
            continue;
        }
        out += mark.kind == Mark::Kind::asks ? u"" : u"\\";
        appendNumber(out, number);
        if (mark.kind == Mark::Kind::refers && mark.at < text.size() && isDigit(text[mark.at])) {
            out += u"(?:)";  // keeps the digit out of the number
        }
    }
    return out.append(text, copied);
}

std::optional<std::size_t> RE_Builder::tokenIndex(const RE_Token& token) const {
    Numbering numbering(*this);
    for (const Mark& mark : marks) {
        numbering.pass(mark);
    }
    const std::uint64_t number = numbering.of(token.identity);
    return number == 0 ? std::nullopt : std::optional(static_cast<std::size_t>(number - 1));
}

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

void RE_Builder::encloseIn(std::u16string_view open, std::u16string_view close) {
    text.reserve(text.size() + open.size() + close.size());
    text.insert(0, open);
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

}  // namespace RE_Builder_Space
