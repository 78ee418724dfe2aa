// Recursive descent over the well-formed dialect; the first thing it cannot read makes the whole parse fail.
#include "tests/support/reference_parser.h"

#include "tests/support/reference_units.h"

#include <algorithm>

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

class Parser {
public:
    Parser(std::u16string_view text, Flags flags) : m_reader(text), m_flags(flags) {}

    Pattern run() {
        Pattern pattern;
        pattern.root = alternation();
        if (!m_reader.done()) {
            throw Unreadable();
        }
        pattern.tokenCount = m_tokens;
        for (const std::u16string& name : m_namesUsed) {
            if (std::find(m_names.begin(), m_names.end(), name) == m_names.end()) {
                throw Unreadable();
            }
        }
        return pattern;
    }

private:
    void skipSpacing() { m_reader.skipSpacing(m_flags.freeSpacing); }

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

    NodePtr sequence() {
        NodePtr node = make(Kind::Sequence);
        for (skipSpacing(); !m_reader.done() && !m_reader.sees(u"|") && !m_reader.sees(u")"); skipSpacing()) {
            NodePtr item = atom();
            for (const char16_t unit : std::exchange(m_text, {})) {
                node->children.push_back(std::exchange(item, units({{unit, unit}}, false)));
            }
            node->children.push_back(quantified(std::move(item)));
        }
        return node;
    }

    NodePtr quantified(NodePtr item) {
        for (;;) {
            skipSpacing();
            NodePtr repeat = make(Kind::Repeat);
            if (!quantifier(*repeat)) {
                return item;
            }
            repeat->children.push_back(std::move(item));
            repeat->lazy = m_reader.takes(u"?");
            const bool possessive = !repeat->lazy && m_reader.takes(u"+");
            item = possessive ? wrap(Kind::Atomic, std::move(repeat)) : std::move(repeat);
        }
    }

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
        repeat.min = repeat.max = numberInBraces();
        if (m_reader.takes(u",")) {
            m_reader.skipBlanks(m_flags.freeSpacing);
            repeat.max = m_reader.sees(u"}") ? std::numeric_limits<size_t>::max() : numberInBraces();
        }
        m_reader.need(u"}");
        if (repeat.max < repeat.min) {
            throw Unreadable();
        }
        return true;
    }

    size_t numberInBraces() {
        m_reader.skipBlanks(m_flags.freeSpacing);
        const size_t value = m_reader.number();
        m_reader.skipBlanks(m_flags.freeSpacing);
        return value;
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
            case u']':
            case u'}':
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
            m_namesUsed.push_back(node->name);
            return node;
        }
        if (isDigit(unit) && unit != u'0') {
            return numberedReference(static_cast<size_t>(unit - u'0'));
        }
        const std::optional<char16_t> value = escapedUnit(m_reader, unit);
        if (!value && m_reader.sees(u"{")) {
            textInBraces();
        }
        return units({{value.value_or(unit), value.value_or(unit)}}, false);
    }

    // A brace that belongs to a malformed number begins no quantifier, and neither does one within.
    void textInBraces() {
        while (!m_text.ends_with(u'}')) {
            const std::optional<char16_t> unit = m_reader.takesPlain(m_flags.freeSpacing);
            if (!unit) {
                return;
            }
            m_text += *unit;
        }
    }

    NodePtr reference() const {
        NodePtr node = make(Kind::Reference);
        node->ignoreCase = m_flags.ignoreCase;
        return node;
    }

    NodePtr numberedReference(size_t value) {
        NodePtr node = reference();
        node->number = m_reader.moreDigits(value, m_tokens) - 1;
        return node;
    }

    NodePtr set() {
        SetText text = readSet(m_reader);
        return units(std::move(text.ranges), text.negated);
    }

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
            std::u16string label = m_reader.name(u">", m_flags.freeSpacing);
            m_names.push_back(label);
            return capture(std::move(label));
        }
        return m_reader.takes(u"(") ? conditional() : modes();
    }

    NodePtr closed(NodePtr body) {
        m_reader.need(u")");
        return body;
    }

    NodePtr capture(std::u16string label) {
        NodePtr node = make(Kind::Capture);
        node->number = m_tokens++;
        node->name = std::move(label);
        node->children.push_back(closed(alternation()));
        return node;
    }

    NodePtr lookaround() {
        NodePtr node = make(Kind::Look);
        node->behind = m_reader.sees(u"<=") || m_reader.sees(u"<!");
        node->negated = m_reader.sees(u"!") || m_reader.sees(u"<!");
        if (!(m_reader.takes(u"<=") || m_reader.takes(u"<!") || m_reader.takes(u"=") ||
              m_reader.takes(u"!"))) {
            return nullptr;
        }
        node->children.push_back(closed(alternation()));
        return node;
    }

    NodePtr conditional() {
        NodePtr node = make(Kind::Conditional);
        if (m_reader.takes(u"?")) {
            node->condition = lookaround();
            if (!node->condition) {
                throw Unreadable();
            }
        } else if (m_reader.seesDigit()) {
            const size_t ordinal = m_reader.number();
            if (ordinal == 0) {
                throw Unreadable();
            }
            node->number = ordinal - 1;
            m_reader.need(u")");
        } else {
            node->name = m_reader.name(u")", false);
            m_namesUsed.push_back(node->name);
        }
        const Flags saved = m_flags;
        node->children.push_back(sequence());
        node->children.push_back(m_reader.takes(u"|") ? alternation() : make(Kind::Sequence));
        m_flags = saved;
        return closed(std::move(node));
    }

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

    static void setMode(Flags& flags, char16_t letter, bool value) {
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
            default:
                throw Unreadable();
        }
    }

    Reader m_reader;
    Flags m_flags;
    size_t m_tokens = 0;
    std::u16string m_text;  // units that follow the atom just read
    std::vector<std::u16string> m_names;
    std::vector<std::u16string> m_namesUsed;
};

}  // namespace

std::optional<Pattern> parse(std::u16string_view pattern, unsigned flagBits) {
    try {
        return Parser(pattern, Flags::from(flagBits)).run();
    } catch (const Unreadable&) {
        return std::nullopt;
    }
}

}  // namespace corvane_tests::reference
