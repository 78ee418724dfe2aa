// A walk through the pattern that takes one way at each choice and writes what the way consumes. Assertions are
// ignored, so the text need not match: near misses are wanted anyway.
#include "tests/support/subject_random.h"

#include "tests/support/reference_parser.h"
#include "tests/support/reference_units.h"

#include <algorithm>

namespace corvane_tests {
namespace {

using reference::Kind;
using reference::Node;

constexpr std::u16string_view kUnits = u"aaabbcAB1_- \n\u00e9\u0416\u0436\u212a\U0001F600\u0130kK.]\tC";

/// Writes one text that the pattern may match.
class Sampler {
public:
    Sampler(PatternSource& source, const reference::Pattern& pattern, size_t longest)
        : m_source(source), m_longest(longest), m_tokens(pattern.tokenNames.size()), m_names(pattern.tokenNames) {}

    std::u16string run(const Node& root) {
        write(root);
        return std::move(m_text);
    }

private:
    void write(const Node& node) {
        // Loops in loops would write without end.
        if (m_text.size() > m_longest || ++m_nodes > 200) {
            return;
        }
        switch (node.kind) {
            case Kind::Sequence:
                for (const auto& child : node.children) {
                    write(*child);
                }
                return;
            case Kind::Alternation:
                write(*node.children[m_source.below(node.children.size())]);
                return;
            case Kind::Unit:
                m_text += unitOf(node);
                return;
            case Kind::Repeat:
                writePasses(node);
                return;
            case Kind::Capture:
                writeToken(node);
                return;
            case Kind::Atomic:
                write(*node.children[0]);
                return;
            case Kind::Look:
                writeLook(node);
                return;
            case Kind::Reference:
                m_text += referred(node);
                return;
            case Kind::Conditional:
                write(*node.children[m_source.below(2)]);
                return;
            case Kind::Anchor:
                writeAnchor(node.letter);
                return;
            case Kind::Dynamic:
                writeIncluded(node);
                return;
        }
    }

    bool accepts(const Node& node, char16_t unit) const {
        const bool in = std::any_of(node.ranges.begin(), node.ranges.end(), [&](const reference::Range& range) {
            return range.low <= unit && unit <= range.high;
        });
        return in != node.negated;
    }

    /// One of the set that the reference knows, or where there is none any unit.
    char16_t unitOf(const Node& node) {
        char16_t unit = kUnits[m_source.below(kUnits.size())];
        for (int tries = 0; tries < 8 && !accepts(node, unit); ++tries) {
            const bool fromSet = !node.negated && !node.ranges.empty() && m_source.oneIn(2);
            const char16_t low = fromSet ? node.ranges[m_source.below(node.ranges.size())].low : u'\0';
            const bool known = low != 0 && (low < 0x80 || kUnits.find(low) != kUnits.npos);
            unit = known ? low : kUnits[m_source.below(kUnits.size())];
        }
        if (node.ignoreCase && m_source.oneIn(2)) {
            const std::u16string cases = reference::casesOf(unit);
            unit = cases[m_source.below(cases.size())];
        }
        return unit;
    }

    // As many as required and up to three more.
    void writePasses(const Node& node) {
        const size_t most = std::min(node.max, node.min + 3);
        for (size_t left = node.min + m_source.below(most - node.min + 1); left > 0; --left) {
            write(*node.children[0]);
        }
    }

    void writeToken(const Node& node) {
        const size_t start = m_text.size();
        write(*node.children[0]);
        m_tokens[node.number] = m_text.substr(start);
    }

    // What a lookahead asks for is there if the rest happens to write it as well; now and then it is written at once.
    void writeLook(const Node& node) {
        if (m_source.oneIn(node.behind ? 2 : 4)) {
            write(*node.children[0]);
        }
    }

    std::u16string referred(const Node& node) const {
        if (node.name.empty()) {
            return node.number < m_tokens.size() ? m_tokens[node.number] : u"";
        }
        const auto found = std::find(m_names.begin(), m_names.end(), node.name);
        return found == m_names.end() ? u"" : m_tokens[static_cast<size_t>(found - m_names.begin())];
    }

    void writeAnchor(char letter) {
        if (m_source.oneIn(3) && letter != '^' && letter != '$') {
            m_text += letter == '<' || letter == '>' ? u' ' : u'\n';
        }
    }

    // A dynamic text as far as it is known before the search: its literal parts.
    void writeIncluded(const Node& node) {
        std::u16string text;
        for (const reference::TextPart& part : node.expansion) {
            const bool isGiven = part.kind == reference::TextPart::Kind::Expression && part.text.starts_with(u"=");
            text += part.kind == reference::TextPart::Kind::Literal ? part.text : isGiven ? part.text.substr(1) : u"";
        }
        if (const auto included = reference::parseIncluded(text, node.modes)) {
            write(*included->root);
        }
    }

    PatternSource& m_source;
    size_t m_longest;
    size_t m_nodes = 0;
    std::u16string m_text;
    std::vector<std::u16string> m_tokens;
    const std::vector<std::u16string>& m_names;
};

std::u16string letters(PatternSource& source, size_t most) {
    std::u16string text;
    for (size_t left = source.below(most + 1); left > 0; --left) {
        text += source.oneIn(3) ? kUnits[source.below(kUnits.size())] : u"aabbc"[source.below(5)];
    }
    return text;
}

/// One unit more, one less, or another.
void mutate(PatternSource& source, std::u16string& text) {
    if (text.empty()) {
        return;
    }
    const size_t place = source.below(text.size());
    const size_t way = source.below(3);
    const char16_t unit = source.oneIn(2) ? text[source.below(text.size())] : kUnits[source.below(kUnits.size())];
    text.replace(place, way == 0 ? 0 : 1, way == 1 ? 0 : 1, unit);
}

std::u16string sampled(PatternSource& source, const reference::Pattern& pattern, size_t longest) {
    std::u16string text = source.oneIn(2) ? u"" : letters(source, 3);
    for (size_t pieces = 1 + source.below(2); pieces > 0; --pieces) {
        text += Sampler(source, pattern, longest).run(*pattern.root);
        text += source.oneIn(2) ? letters(source, 2) : u"";
    }
    return text;
}

}  // namespace

std::u16string drawSubject(PatternSource& source, const reference::Pattern* pattern, size_t longest) {
    std::u16string text =
        pattern == nullptr || source.oneIn(4) ? letters(source, longest) : sampled(source, *pattern, longest);
    for (size_t left = source.below(3); left > 0; --left) {
        mutate(source, text);
    }
    return text.substr(0, longest);
}

std::u16string drawLongSubject(PatternSource& source, const reference::Pattern* pattern, size_t longest) {
    std::u16string text;
    while (text.size() < longest && !source.oneIn(8)) {
        for (const char16_t unit : drawSubject(source, pattern, 12)) {
            text.append(source.oneIn(4) ? 1 + source.below(longest / 4 + 1) : 1, unit);
        }
    }
    return text.substr(0, longest);
}

}  // namespace corvane_tests
