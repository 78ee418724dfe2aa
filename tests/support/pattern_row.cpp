// Rows are read like patterns, as far as groups and modes go: so the writer always knows how many groups there are and
// which modes are in force, and writes blanks, expressions and references accordingly. It must not read them by the
// engine's code, or a fault of the parser would draw the patterns that hide it.
#include "regexp/base/flags.h"
#include "tests/support/pattern_writer.h"

#include <iterator>
#include <optional>
#include <utility>

namespace corvane_tests {
namespace {

unsigned modeBit(char16_t letter) {
    switch (letter) {
        case u'i':
            return RE_FLAG_IGNORE_CASE;
        case u's':
            return RE_FLAG_DOT_ALL;
        case u'm':
            return RE_FLAG_LINE_ANCHORS;
        case u'x':
            return RE_FLAG_FREE_SPACING;
        default:
            return RE_FLAG_EVALUATE;
    }
}

Piece inGroup(const Piece& piece) {
    return {u"(?:" + piece.text + u")", piece.nullable, true, false};
}

}  // namespace

/// One row while its gaps are filled.
class PatternWriter::Row {
public:
    Row(PatternWriter& writer, size_t construct, int depth)
        : m_writer(writer),
          m_row(Coverage::construct(construct)),
          m_depth(depth),
          m_context(construct - leafConstructs().size()) {}

    Piece run() {
        while (m_at < m_row.text.size()) {
            step();
        }
        const bool nullable = m_row.empty == Empty::may || (m_row.empty == Empty::asBody && m_bodyNullable);
        return {std::move(m_out), nullable, m_row.quantifiable, false};
    }

private:
    /// What a closing parenthesis puts back.
    struct Outer {
        unsigned modes;
        bool makesTokens;
        bool isRead;
    };

    bool sees(std::u16string_view text) const {
        return std::u16string_view(m_row.text).substr(m_at, text.size()) == text;
    }
    void copy(size_t units) {
        m_out.append(m_row.text, m_at, units);
        m_at += units;
    }

    /// Copies or fills the next part of the row.
    void step() {
        switch (m_row.text[m_at]) {
            case u'\\':
                copy(1);
                if (m_row.text[m_at] != u'{') {  // or it is a number that follows
                    copy(1);
                }
                return;
            case u'[':
                copySet();
                return;
            case u'(':
                open();
                return;
            case u')':
                leave();
                return;
            case u'#':
                copy(m_writer.hasMode(RE_FLAG_FREE_SPACING) ? m_row.text.find(u'\n', m_at) + 1 - m_at : 1);
                return;
            case u'{':
                gap();
                return;
            default:
                copy(1);
        }
    }

    /// A bracket that comes first is a member, and an escaped one too.
    void copySet() {
        const size_t first = m_at + (sees(u"[^") ? 2 : 1);
        size_t end = first;
        while (end == first || m_row.text[end] != u']') {
            end += m_row.text[end] == u'\\' ? 2 : 1;
        }
        copy(end + 1 - m_at);
    }

    void open() {
        if (sees(u"(?#")) {
            copyPaired(false);
        } else if (sees(u"(?@") || sees(u"(??")) {
            copyPaired(true);
        } else if (sees(u"(?({")) {
            enter(3);
            gap();
            copy(1);
        } else if (sees(u"(?(?@")) {
            enter(2);
            if (!m_writer.hasMode(RE_FLAG_EVALUATE)) {
                m_writer.m_isRead = m_writer.m_makesTokens = false;
            }
            copyPaired(true);
        } else if (sees(u"(?(")) {
            enter(2);
        } else if (sees(u"(?<") && !sees(u"(?<=") && !sees(u"(?<!")) {
            openNamed();
        } else if (!sees(u"(?")) {
            m_writer.m_groups += m_writer.m_makesTokens ? 1 : 0;
            enter(1);
        } else {
            openMarked();
        }
    }

    /// Copies an opening and notes what its closing parenthesis restores.
    void enter(size_t units) {
        m_outer.push_back({m_writer.m_modes, m_writer.m_makesTokens, m_writer.m_isRead});
        copy(units);
    }

    void leave() {
        m_writer.m_modes = m_outer.back().modes;
        m_writer.m_makesTokens = m_outer.back().makesTokens;
        m_writer.m_isRead = m_outer.back().isRead;
        m_outer.pop_back();
        copy(1);
    }

    /// A name in the text of a row is one letter; elsewhere it is a gap.
    void openNamed() {
        m_writer.m_groups += m_writer.m_makesTokens ? 1 : 0;
        enter(3);
        if (sees(u"{")) {
            gap();
        } else {
            m_writer.defineName(m_row.text.substr(m_at, 1));
        }
    }

    // (?: (?> (?= and modes.
    void openMarked() {
        unsigned modes = m_writer.m_modes;
        size_t end = m_at + 2;
        bool value = true;
        for (; std::u16string_view(u"imsxe-").find(m_row.text[end]) != std::u16string_view::npos; ++end) {
            const unsigned bit = m_row.text[end] == u'-' ? 0 : modeBit(m_row.text[end]);
            value = value && m_row.text[end] != u'-';
            modes = value ? modes | bit : modes & ~bit;
        }
        if (m_row.text[end] == u')') {
            copy(end + 1 - m_at);
        } else {
            enter(end - m_at);
        }
        m_writer.m_modes = modes;
    }

    /// A group whose parentheses are none of the pattern's: a comment or an expression.
    void copyPaired(bool withGaps) {
        size_t depth = 0;
        do {
            depth += sees(u"(") ? 1 : 0;
            depth -= sees(u")") ? 1 : 0;
            if (withGaps && sees(u"{")) {
                gap();
            } else {
                copy(1);
            }
        } while (depth > 0);
    }

    /// What a word in braces stands for. Braces that hold no known word, such as a quantifier's, are copied.
    void gap() {
        const size_t end = m_row.text.find(u'}', m_at);
        const std::u16string word = m_row.text.substr(m_at + 1, end - m_at - 1);
        const std::optional<std::u16string> text = fill(word);
        if (text) {
            m_out += *text;
            m_at = end + 1;
        } else {
            copy(1);
        }
    }

    std::optional<std::u16string> fill(const std::u16string& word) {
        if (word == u"some") {
            return m_writer.few().text;
        }
        if (word == u"n" || word == u"k") {
            return m_writer.groupNumber(word == u"k");
        }
        if (word == u"name") {
            return m_writer.knownName();
        }
        if (word == u"new") {
            return m_writer.newName();
        }
        if (word == u"truth") {
            static constexpr const char16_t* truths[] = {u"yes", u"no", u"even($1)", u"even($<n>)"};
            return truths[m_writer.below(std::size(truths))];
        }
        return fillBody(word);
    }

    std::optional<std::u16string> fillBody(const std::u16string& word) {
        if (word == u"text" || word == u"included") {
            return dynamicBody(word == u"text");
        }
        if (word != u"body" && word != u"one" && word != u"full" && word != u"hollow") {
            return std::nullopt;
        }
        const unsigned modes = m_writer.m_modes;
        Piece piece = m_writer.body(m_context, m_depth);
        const bool isDivided = word == u"one" && piece.hasBar;
        if (word == u"full") {
            piece = filled(piece);
        } else if (word == u"hollow") {
            piece = hollowed(piece);
        }
        m_bodyNullable = piece.nullable;
        const bool isItem = word == u"full" || word == u"hollow";
        if (isDivided || (isItem && !(piece.isAtom && m_writer.oneIn(2)))) {
            m_writer.m_modes = modes;
            return inGroup(piece).text;
        }
        return piece.text;
    }

    /// Made to consume something, so that a loop over it makes progress.
    Piece filled(const Piece& piece) {
        if (!piece.nullable) {
            return piece;
        }
        const std::u16string text = inGroup(piece).text;
        return {m_writer.oneIn(2) ? text + u"a" : u"b" + text, false};
    }

    /// Made to match the empty text too, in a way that is drawn.
    Piece hollowed(const Piece& piece) {
        if (piece.nullable) {
            return piece;
        }
        static constexpr const char16_t* ends[] = {u"|", u"?", u"??", u"*"};
        const std::u16string end = ends[m_writer.below((m_writer.m_without & kUnbounded) != 0 ? 3 : 4)];
        return {m_writer.oneIn(4) ? u"|" + piece.text : inGroup(piece).text + end, true};
    }

    /// The body of a dynamic text: its groups make no tokens, and where nothing is evaluated it is not read at all.
    std::u16string dynamicBody(bool rewritten) {
        const unsigned modes = m_writer.m_modes;
        const bool madeTokens = std::exchange(m_writer.m_makesTokens, false);
        const bool wasRead = m_writer.m_isRead;
        m_writer.m_isRead = wasRead && m_writer.hasMode(RE_FLAG_EVALUATE);
        const unsigned without = m_writer.m_without;
        m_writer.m_without |= m_writer.hasMode(RE_FLAG_FREE_SPACING) ? kComments : 0U;
        const std::u16string text = m_writer.body(m_context, m_depth).text;
        m_writer.m_modes = modes;
        m_writer.m_makesTokens = madeTokens;
        m_writer.m_isRead = wasRead;
        m_writer.m_without = without;
        return rewritten ? asDynamicText(text) : text;
    }

    PatternWriter& m_writer;
    const Construct& m_row;
    int m_depth;
    size_t m_context;
    size_t m_at = 0;
    std::u16string m_out;
    // What a row with `asBody` is: set by the last body.
    bool m_bodyNullable = true;
    std::vector<Outer> m_outer;
};

Piece PatternWriter::write(size_t construct, int depth) {
    if (m_isRead) {
        noteDrawn(construct);
    }
    return Row(*this, construct, depth).run();
}

std::u16string asDynamicText(std::u16string_view pattern) {
    std::u16string text;
    for (size_t at = 0; at < pattern.size(); ++at) {
        if (pattern[at] == u'$') {
            text += u"\\$";
        } else if (pattern[at] == u'\\') {
            text += u"\\\\";
            const char16_t next = pattern[++at];
            const bool isWord =
                (next >= u'0' && next <= u'9') || (next >= u'A' && next <= u'Z') || (next >= u'a' && next <= u'z');
            text += isWord ? u"" : u"\\";
            text += next;
        } else {
            text += pattern[at];
        }
    }
    return text;
}

}  // namespace corvane_tests
