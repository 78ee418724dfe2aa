// A list in place of a search: `endsOf` gives all ends of a part from one place, in order of preference. A pattern's
// match is then the first of the list that is accepted, and nothing ever backtracks.
//
// Why an end may be listed once: whatever follows a part depends on where it ended and on what the group captured, both
// of which are in End. If it failed from the first occurrence, it fails from later ones.
#include "tests/support/reference_ends.h"

#include "tests/support/reference_parser.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace corvane_tests::reference {
namespace {

struct TooManyEnds {};

/// Where a part ended, and what the group had captured by then.
struct End {
    size_t at;
    bool captured = false;
    size_t start = 0;
    size_t length = 0;

    auto operator<=>(const End&) const = default;
};

using Ends = std::vector<End>;

/// Appends what is not there yet. Quadratic, on lists as long as the subject.
void add(Ends& ends, const Ends& more) {
    for (const End& end : more) {
        if (std::find(ends.begin(), ends.end(), end) == ends.end()) {
            ends.push_back(end);
        }
    }
}

/// All parts of one pattern on one subject.
class Lister {
public:
    explicit Lister(std::u16string_view subject) : m_subject(subject) {}

    Ends endsOf(const Node& node, const End& from) {
        switch (node.kind) {
            case Kind::Sequence:
                return sequence(node, from);
            case Kind::Alternation:
                return alternation(node, from);
            case Kind::Unit:
                return accepts(node, from.at) ? Ends{{from.at + 1, from.captured, from.start, from.length}} : Ends{};
            case Kind::Repeat:
                return repeat(node, node.min, from);
            case Kind::Capture:
                return capture(node, from);
            case Kind::Atomic:
                return first(endsOf(*node.children[0], from));
            case Kind::Look:
                return look(node, from);
            case Kind::Reference:
                return reference(node, from);
            case Kind::Anchor:
                return holds(node.letter, from.at) ? Ends{from} : Ends{};
            case Kind::Conditional:
            case Kind::Dynamic:
                break;
        }
        throw TooManyEnds();
    }

private:
    static Ends first(Ends ends) {
        ends.resize(std::min<size_t>(ends.size(), 1));
        return ends;
    }

    /// From every end of one part the ends of the next, in order: preference of the first part counts for more.
    Ends sequence(const Node& node, const End& from) {
        Ends ends{from};
        for (const NodePtr& part : node.children) {
            Ends behind;
            for (const End& end : ends) {
                add(behind, endsOf(*part, end));
            }
            ends = std::move(behind);
        }
        return ends;
    }

    Ends alternation(const Node& node, const End& from) {
        Ends ends;
        for (const NodePtr& branch : node.children) {
            add(ends, endsOf(*branch, from));
        }
        return ends;
    }

    bool accepts(const Node& node, size_t at) const {
        refuseCases(node);
        return at < m_subject.size() &&
               node.negated != std::any_of(node.ranges.begin(), node.ranges.end(), [&](const Range& range) {
                   return range.low <= m_subject[at] && m_subject[at] <= range.high;
               });
    }

    /// With so many required passes left. They may be empty, the optional ones not, unless there is one at the most and
    /// the loop is a plain choice. Remembered by passes and place, which is what makes hundreds of passes cheap.
    const Ends& repeat(const Node& node, size_t required, const End& from) {
        const auto [place, isNew] = m_repeats.try_emplace({&node, required, from});
        if (isNew) {
            if (m_repeats.size() > 300'000) {
                throw TooManyEnds();
            }
            Ends ends;
            if (required == 0) {
                ends = optional(node, node.max - node.min, from);
            } else {
                for (const End& end : endsOf(*node.children[0], from)) {
                    add(ends, repeat(node, required - 1, end));
                }
            }
            place->second = std::move(ends);
        }
        return place->second;
    }

    /// Up to `left` passes more. Greedy: the ends after a pass come first, the end without one last.
    Ends optional(const Node& node, size_t left, const End& from) {
        const bool mayBeEmpty = node.min == 0 && node.max == 1;
        Ends ends;
        add(ends, node.lazy ? Ends{from} : Ends{});
        for (const End& end : left > 0 ? endsOf(*node.children[0], from) : Ends{}) {
            if (end.at != from.at || mayBeEmpty) {
                add(ends, left > 1 ? optional(node, left - 1, end) : Ends{end});
            }
        }
        add(ends, node.lazy ? Ends{} : Ends{from});
        return ends;
    }

    Ends capture(const Node& node, const End& from) {
        Ends ends;
        for (const End& end : endsOf(*node.children[0], from)) {
            add(ends, {{end.at, true, from.at, end.at - from.at}});
        }
        return ends;
    }

    Ends look(const Node& node, const End& from) {
        if (node.behind) {
            throw TooManyEnds();
        }
        const Ends ends = first(endsOf(*node.children[0], from));
        if (ends.empty() != node.negated) {
            return {};
        }
        return node.negated ? Ends{from} : Ends{{from.at, ends[0].captured, ends[0].start, ends[0].length}};
    }

    static void refuseCases(const Node& node) {
        if (node.ignoreCase) {
            throw TooManyEnds();
        }
    }

    Ends reference(const Node& node, const End& from) const {
        refuseCases(node);
        const bool matches = from.captured && node.number == 0 &&
                             m_subject.substr(from.at, from.length) == m_subject.substr(from.start, from.length);
        return matches ? Ends{{from.at + from.length, true, from.start, from.length}} : Ends{};
    }

    bool holds(char letter, size_t at) const {
        const auto isWord = [&](size_t index) { return m_subject[index] >= u'a' && m_subject[index] <= u'z'; };
        switch (letter) {
            case '^':
                return at == 0;
            case '$':
                return at == m_subject.size();
            case '<':
                return at == 0 || !isWord(at - 1);
            case '>':
                return at == m_subject.size() || !isWord(at);
            default:
                throw TooManyEnds();
        }
    }

    std::u16string_view m_subject;
    std::map<std::tuple<const Node*, size_t, End>, Ends> m_repeats;
};

/// The first start with an acceptable end.
Outcome searchFrom(const Pattern& pattern, bool emptyAccepted, std::u16string_view subject, size_t offset) {
    Lister lister(subject);
    for (size_t start = offset; start <= subject.size(); ++start) {
        for (const End& end : lister.endsOf(*pattern.root, {start})) {
            if (end.at != start || emptyAccepted) {
                const Token token{end.start, end.length, {}};
                return {true, start, end.at - start, end.captured ? std::vector<Token>{token} : std::vector<Token>{}};
            }
        }
    }
    return {};
}

}  // namespace

std::optional<Outcome> searchByEnds(std::u16string_view pattern, unsigned flagBits, std::u16string_view subject,
                                    size_t offset) {
    const std::optional<Pattern> parsed = parse(pattern, flagBits);
    if (!parsed || parsed->tokenNames.size() > 1) {
        return std::nullopt;
    }
    try {
        return searchFrom(*parsed, (flagBits & 0x20U) != 0, subject, offset);
    } catch (const TooManyEnds&) {
        return std::nullopt;
    }
}

}  // namespace corvane_tests::reference
