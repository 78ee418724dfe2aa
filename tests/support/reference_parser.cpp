// Recursive descent over the well-formed dialect; the first thing it cannot read makes the whole parse fail.
//
// Names follow the grammar: a function reads what it is called after and leaves the reader past it. Modes are those at
// the place of the reader; a group restores them at its end.
#include "tests/support/reference_parser.h"

#include "tests/support/reference_brackets.h"
#include "tests/support/reference_expansion.h"
#include "tests/support/reference_units.h"

namespace corvane_tests::reference {
namespace {

NodePtr make(Kind kind) {
    auto node = std::make_unique<Node>();
    node->kind = kind;
    return node;
}

NodePtr wrap(Kind kind, NodePtr child) {
    NodePtr node = make(kind);
    node->children.push_back(std::move(child));
    return node;
}

/// Reads one pattern. Null in place of a node is something that was dropped, with its quantifiers.
class Parser {
public:
    Parser(std::u16string_view text, Flags flags, bool hostEvaluates, bool makesTokens)
        : m_reader(text), m_flags(flags), m_hostEvaluates(hostEvaluates), m_makesTokens(makesTokens) {}

    Pattern run() {
        Pattern pattern;
        pattern.root = alternation();
        if (!m_reader.done()) {
            throw Unreadable();
        }
        pattern.tokenNames = std::move(m_tokenNames);
        return pattern;
    }

private:
    void skipSpacing() { m_reader.skipSpacing(m_flags.freeSpacing); }

    /// Branches up to a closing parenthesis or the end. Modes that a branch sets hold in the branches after it too.
    NodePtr alternation() {
        const Flags saved = m_flags;
        std::vector<NodePtr> branches;
        branches.push_back(sequence());
        while (m_reader.takes(u"|")) {
            branches.push_back(sequence());
        }
        m_flags = saved;
        if (branches.size() == 1) {
            return std::move(branches.front());
        }
        NodePtr node = make(Kind::Alternation);
        node->children = std::move(branches);
        return node;
    }

    /// Items up to a bar, a closing parenthesis or the end.
    NodePtr sequence() {
        NodePtr node = make(Kind::Sequence);
        for (skipSpacing(); !m_reader.done() && !m_reader.sees(u"|") && !m_reader.sees(u")"); skipSpacing()) {
            if (NodePtr item = quantified(atom())) {
                node->children.push_back(std::move(item));
            }
        }
        return node;
    }

    /// What was dropped (null) takes its quantifiers along.
    NodePtr quantified(NodePtr item) {
        for (;;) {
            skipSpacing();
            NodePtr repeat = make(Kind::Repeat);
            if (!quantifier(*repeat)) {
                return item;
            }
            repeat->lazy = m_reader.takes(u"?");
            // A possessive loop is an atomic group around a loop, by definition.
            const bool possessive = !repeat->lazy && m_reader.takes(u"+");
            if (!item) {
                continue;
            }
            repeat->children.push_back(std::move(item));
            item = possessive ? wrap(Kind::Atomic, std::move(repeat)) : std::move(repeat);
        }
    }

    /// Reads the bounds. False when there is no quantifier; one that is malformed is beyond the reference.
    bool quantifier(Node& repeat) {
        if (m_reader.takes(u"*")) {
            return true;
        }
        if (m_reader.takes(u"+")) {
            repeat.min = 1;
            return true;
        }
        if (m_reader.takes(u"?")) {
            repeat.max = 1;
            return true;
        }
        if (!m_reader.takes(u"{")) {
            return false;
        }
        skipSpacing();
        repeat.min = repeat.max = m_reader.number();
        skipSpacing();
        if (m_reader.takes(u",")) {
            skipSpacing();
            repeat.max = m_reader.sees(u"}") ? std::numeric_limits<size_t>::max() : m_reader.number();
            skipSpacing();
        }
        m_reader.need(u"}");
        if (repeat.max < repeat.min) {
            throw Unreadable();
        }
        return true;
    }

    NodePtr atom() {
        const char16_t unit = m_reader.take();
        switch (unit) {
            case u'(':
                return group();
            case u'[':
                return set();
            case u'\\':
                return escape();
            case u'.':
                return m_flags.dotAll ? units({{0, 0xFFFF}}, false) : units({{u'\n', u'\n'}}, true);
            case u'^':
                return anchor(m_flags.lineAnchors ? '(' : '^');
            case u'$':
                return anchor(m_flags.lineAnchors ? ')' : '$');
            case u'*':
            case u'+':
            case u'?':
            case u'{':
                throw Unreadable();
            default:
                return units({{unit, unit}}, false);
        }
    }

    NodePtr units(std::vector<Range> ranges, bool negated) const {
        NodePtr node = make(Kind::Unit);
        node->ranges = std::move(ranges);
        node->negated = negated;
        node->ignoreCase = m_flags.ignoreCase;
        return node;
    }

    static NodePtr anchor(char letter) {
        NodePtr node = make(Kind::Anchor);
        node->letter = letter;
        return node;
    }

    /// After the backslash: anchor, class, reference or character, in this order.
    NodePtr escape() {
        const char16_t unit = m_reader.take();
        if (unit == u'<' || unit == u'>') {
            return anchor(static_cast<char>(unit));
        }
        if (std::vector<Range> ranges = classRanges(unit); !ranges.empty()) {
            return units(std::move(ranges), false);
        }
        if (unit == u'k' && m_reader.takes(u"<")) {
            NodePtr node = reference();
            node->name = m_reader.name(u">", m_flags.freeSpacing);
            return node;
        }
        if (isDigit(unit) && unit != u'0') {
            return numberedReference(static_cast<size_t>(unit - u'0'));
        }
        return character(escapedCharacter(unit, m_reader));
    }

    /// A character beyond the units is a pair of them, as one item.
    NodePtr character(char32_t value) const {
        if (value <= 0xFFFF) {
            const auto unit = static_cast<char16_t>(value);
            return units({{unit, unit}}, false);
        }
        NodePtr pair = make(Kind::Sequence);
        pair->children.push_back(character(0xD800 + ((value - 0x10000) >> 10)));
        pair->children.push_back(character(0xDC00 + ((value - 0x10000) & 0x3FF)));
        return pair;
    }

    NodePtr reference() const {
        NodePtr node = make(Kind::Reference);
        node->ignoreCase = m_flags.ignoreCase;
        return node;
    }

    NodePtr numberedReference(size_t value) {
        NodePtr node = reference();
        node->number = m_reader.moreDigits(value, m_tokenNames.size()) - 1;
        return node;
    }

    NodePtr set() {
        SetText text = readSet(m_reader);
        return units(std::move(text.ranges), text.negated);
    }

    /// After the opening parenthesis. The order of the tests matters: (?<= is no name, (?? is no mode.
    NodePtr group() {
        if (!m_reader.takes(u"?")) {
            return capture(u"");
        }
        if (NodePtr look = lookaround()) {
            return look;
        }
        if (m_reader.takes(u":")) {
            return closed(alternation());
        }
        if (m_reader.takes(u">")) {
            return wrap(Kind::Atomic, closed(alternation()));
        }
        if (m_reader.takes(u"<")) {
            return capture(m_reader.name(u">", m_flags.freeSpacing));
        }
        if (m_reader.sees(u"?") || m_reader.sees(u"@")) {
            return dynamic();
        }
        return m_reader.takes(u"(") ? conditional() : modes();
    }

    NodePtr closed(NodePtr body) {
        m_reader.need(u")");
        return body;
    }

    /// Tokens are numbered by their opening parentheses, so the number is taken before the body is read.
    NodePtr capture(std::u16string name) {
        if (!m_makesTokens) {
            return closed(alternation());
        }
        NodePtr node = make(Kind::Capture);
        node->number = m_tokenNames.size();
        m_tokenNames.push_back(std::move(name));
        node->children.push_back(closed(alternation()));
        return node;
    }

    /// Null, with nothing read, when there is none.
    NodePtr lookaround() {
        NodePtr node = make(Kind::Look);
        node->behind = m_reader.sees(u"<=") || m_reader.sees(u"<!");
        node->negated = m_reader.sees(u"!") || m_reader.sees(u"<!");
        if (!(m_reader.takes(u"<=") || m_reader.takes(u"<!") || m_reader.takes(u"=") || m_reader.takes(u"!"))) {
            return nullptr;
        }
        node->children.push_back(closed(alternation()));
        return node;
    }

    /// The text of a group up to its end, both of which are consumed.
    std::u16string_view rawText() {
        const std::u16string_view text = m_reader.take(groupEnd(m_reader.rest(), m_flags.freeSpacing));
        m_reader.need(u")");
        return text;
    }

    /// Null where expressions may not be evaluated.
    NodePtr dynamic() {
        const bool isText = m_reader.take() == u'?';
        const bool isExpression = isText && m_reader.takes(u"@");
        const std::u16string_view text = rawText();
        if (!m_flags.evaluate) {
            return nullptr;
        }
        if (!isText) {
            return make(Kind::Sequence);  // called for its effects, of which a match shows none
        }
        NodePtr node = make(Kind::Dynamic);
        node->expansion = isExpression ? expressionAlone(text) : readExpansion(text, m_flags.evaluate);
        node->modes = m_flags;
        return node;
    }

    static std::vector<TextPart> expressionAlone(std::u16string_view text) {
        return {{TextPart::Kind::Expression, std::u16string(text)}};
    }

    /// After "(?(". Alternatives past the second branch belong to it. Where expressions are not evaluated the whole
    /// construct vanishes, and with it the tokens in it.
    NodePtr conditional() {
        NodePtr node = make(Kind::Conditional);
        const size_t tokensBefore = m_tokenNames.size();
        bool dropped = false;
        if (m_reader.takes(u"?@")) {
            dropped = !m_flags.evaluate;
            node->expansion = expressionAlone(rawText());
        } else {
            readCondition(*node);
        }
        const Flags saved = m_flags;
        node->children.push_back(sequence());
        node->children.push_back(m_reader.takes(u"|") ? alternation() : make(Kind::Sequence));
        m_flags = saved;
        node = closed(std::move(node));
        if (dropped) {
            m_tokenNames.resize(tokensBefore);
            return nullptr;
        }
        return node;
    }

    /// A lookaround, a number or a name.
    void readCondition(Node& node) {
        if (m_reader.takes(u"?")) {
            node.condition = lookaround();
            if (!node.condition) {
                throw Unreadable();
            }
        } else if (m_reader.seesDigit()) {
            const size_t ordinal = m_reader.number();
            if (ordinal == 0) {
                throw Unreadable();
            }
            node.number = ordinal - 1;
            m_reader.need(u")");
        } else {
            node.name = m_reader.name(u")");
        }
    }

    /// Modes alone hold to the end of the enclosing group; with a colon, for their own body.
    NodePtr modes() {
        Flags changed = m_flags;
        bool value = true;
        if (!m_reader.sees(u"-") && !m_reader.seesLetter()) {
            throw Unreadable();
        }
        for (;;) {
            const char16_t unit = m_reader.take();
            if (unit == u'-' && !m_reader.seesLetter()) {
                throw Unreadable();
            }
            if (unit == u')') {
                m_flags = changed;
                refuseQuantifier();
                return make(Kind::Sequence);
            }
            if (unit == u':') {
                break;
            }
            if (unit == u'-') {
                value = false;
            } else {
                setMode(changed, unit, value);
            }
        }
        const Flags saved = m_flags;
        m_flags = changed;
        NodePtr body = closed(alternation());
        m_flags = saved;
        return body;
    }

    // Modes are nothing that could be repeated.
    void refuseQuantifier() {
        skipSpacing();
        if (m_reader.sees(u"*") || m_reader.sees(u"+") || m_reader.sees(u"?") || m_reader.sees(u"{")) {
            throw Unreadable();
        }
    }

    void setMode(Flags& flags, char16_t letter, bool value) const {
        switch (letter) {
            case u'i':
                flags.ignoreCase = value;
                break;
            case u's':
                flags.dotAll = value;
                break;
            case u'm':
                flags.lineAnchors = value;
                break;
            case u'x':
                flags.freeSpacing = value;
                break;
            case u'e':
                flags.evaluate = value && m_hostEvaluates;
                break;
            default:
                throw Unreadable();
        }
    }

    Reader m_reader;
    Flags m_flags;
    bool m_hostEvaluates;
    bool m_makesTokens;
    std::vector<std::u16string> m_tokenNames;
};

std::optional<Pattern> read(std::u16string_view text, Flags flags, bool hostEvaluates, bool makesTokens) {
    try {
        return Parser(text, flags, hostEvaluates, makesTokens).run();
    } catch (const Unreadable&) {
        return std::nullopt;
    }
}

}  // namespace

std::optional<Pattern> parse(std::u16string_view pattern, unsigned flagBits, bool hostEvaluates) {
    return read(pattern, Flags::from(flagBits, hostEvaluates), hostEvaluates, true);
}

std::optional<Pattern> parseIncluded(std::u16string_view text, Flags modes) {
    return read(text, modes, true, false);
}

}  // namespace corvane_tests::reference
