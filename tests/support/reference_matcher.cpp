// Continuation-passing backtracking: every construct is one short function that calls `next` for each way it
// can match, in order of preference, until `next` says true. Tokens travel by value along the path, so a path
// that fails leaves nothing behind.
#include "tests/support/reference_matcher.h"

#include "tests/support/function_ref.h"
#include "tests/support/reference_parser.h"

#include <algorithm>

namespace corvane_tests::reference {
namespace {

struct GaveUp {};

/// Counts the parts that are being matched inside each other, as many as the native stack has room for.
class Depth {
public:
    explicit Depth(size_t& depth) : m_depth(depth) {
        if (++m_depth > 3000) {
            throw GaveUp();
        }
    }
    ~Depth() { --m_depth; }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;

private:
    size_t& m_depth;
};

using Tokens = std::vector<Token>;
using Next = FunctionRef<bool(size_t, const Tokens&)>;

char16_t lower(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

char16_t upper(char16_t unit) {
    return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
}

bool isWord(char16_t unit) {
    return (unit >= u'0' && unit <= u'9') || (lower(unit) >= u'a' && lower(unit) <= u'z') || unit == u'_';
}

bool inRanges(const Node& node, char16_t unit) {
    return std::any_of(node.ranges.begin(), node.ranges.end(),
                       [&](const Range& range) { return range.low <= unit && unit <= range.high; });
}

bool acceptsUnit(const Node& node, char16_t unit) {
    const bool in = inRanges(node, unit) ||
                    (node.ignoreCase && (inRanges(node, lower(unit)) || inRanges(node, upper(unit))));
    return in != node.negated;
}

/// Closing a token forgets every higher one; slots it passes over become present, empty and nameless.
Tokens withToken(const Tokens& tokens, size_t number, Token token) {
    Tokens result(tokens.begin(),
                  tokens.begin() + static_cast<std::ptrdiff_t>(std::min(tokens.size(), number)));
    result.resize(number);
    result.push_back(std::move(token));
    return result;
}

const Token* findToken(const Node& node, const Tokens& tokens) {
    if (node.name.empty()) {
        return node.number < tokens.size() ? &tokens[node.number] : nullptr;
    }
    const auto found = std::find_if(tokens.begin(), tokens.end(),
                                    [&](const Token& token) { return token.name == node.name; });
    return found == tokens.end() ? nullptr : &*found;
}

class Matcher {
public:
    Matcher(std::u16string_view subject, size_t steps) : m_subject(subject), m_stepsLeft(steps) {}

    bool run(const Node& node, size_t at, const Tokens& tokens, Next next) {
        if (m_stepsLeft-- == 0) {
            throw GaveUp();
        }
        const Depth depth(m_depth);
        switch (node.kind) {
            case Kind::Sequence:
                return sequence(node, 0, at, tokens, next);
            case Kind::Alternation:
                return alternation(node, at, tokens, next);
            case Kind::Unit:
                return at < m_subject.size() && acceptsUnit(node, m_subject[at]) && next(at + 1, tokens);
            case Kind::Repeat:
                return node.min == 0 && node.max == 1 ? choice(node, at, tokens, next)
                                                      : repeat(node, 0, at, tokens, next);
            case Kind::Capture:
                return capture(node, at, tokens, next);
            case Kind::Atomic:
                return atomic(node, at, tokens, next);
            case Kind::Look:
                return look(node, at, tokens, next);
            case Kind::Reference:
                return reference(node, at, tokens, next);
            case Kind::Conditional:
                return conditional(node, at, tokens, next);
            case Kind::Anchor:
                return anchorHolds(node.letter, at) && next(at, tokens);
        }
        return false;
    }

private:
    bool sequence(const Node& node, size_t index, size_t at, const Tokens& tokens, Next next) {
        if (index == node.children.size()) {
            return next(at, tokens);
        }
        return run(*node.children[index], at, tokens, [&](size_t end, const Tokens& after) {
            return sequence(node, index + 1, end, after, next);
        });
    }

    bool alternation(const Node& node, size_t at, const Tokens& tokens, Next next) {
        return std::any_of(node.children.begin(), node.children.end(),
                           [&](const NodePtr& branch) { return run(*branch, at, tokens, next); });
    }

    /// A plain `?`: to take the body, whatever it consumes, or to go past it.
    bool choice(const Node& node, size_t at, const Tokens& tokens, Next next) {
        if (node.lazy && next(at, tokens)) {
            return true;
        }
        return run(*node.children[0], at, tokens, next) || (!node.lazy && next(at, tokens));
    }

    /// The first `min` passes are required and may be empty; a further pass must consume something.
    bool repeat(const Node& node, size_t passes, size_t at, const Tokens& tokens, Next next) {
        const bool required = passes < node.min;
        if (!required && node.lazy && next(at, tokens)) {
            return true;
        }
        const bool again =
            passes < node.max && run(*node.children[0], at, tokens, [&](size_t end, const Tokens& after) {
                return (required || end != at) && repeat(node, passes + 1, end, after, next);
            });
        return again || (!required && !node.lazy && next(at, tokens));
    }

    bool capture(const Node& node, size_t at, const Tokens& tokens, Next next) {
        return run(*node.children[0], at, tokens, [&](size_t end, const Tokens& after) {
            return next(end, withToken(after, node.number, {at, end - at, node.name}));
        });
    }

    /// First way through `body` from `at` that ends where `accept` allows; no way back into it afterwards.
    bool closed(const Node& body, size_t at, const Tokens& tokens, FunctionRef<bool(size_t)> accept,
                size_t& end, Tokens& after) {
        return run(body, at, tokens, [&](size_t position, const Tokens& result) {
            if (!accept(position)) {
                return false;
            }
            end = position;
            after = result;
            return true;
        });
    }

    bool atomic(const Node& node, size_t at, const Tokens& tokens, Next next) {
        size_t end = at;
        Tokens after;
        return closed(
                   *node.children[0], at, tokens, [](size_t) { return true; }, end, after) &&
               next(end, after);
    }

    bool holds(const Node& look, size_t at, const Tokens& tokens, Tokens& after) {
        size_t end = at;
        const Node& body = *look.children[0];
        if (!look.behind) {
            return closed(
                body, at, tokens, [](size_t) { return true; }, end, after);
        }
        for (size_t start = at + 1; start-- > 0;) {
            if (closed(
                    body, start, tokens, [&](size_t position) { return position == at; }, end, after)) {
                return true;
            }
        }
        return false;
    }

    bool look(const Node& node, size_t at, const Tokens& tokens, Next next) {
        Tokens after;
        const bool held = holds(node, at, tokens, after);
        return held != node.negated && next(at, held ? after : tokens);
    }

    bool reference(const Node& node, size_t at, const Tokens& tokens, Next next) {
        const Token* token = findToken(node, tokens);
        if (token == nullptr || token->length > m_subject.size() - at) {
            return false;
        }
        for (size_t index = 0; index < token->length; ++index) {
            const char16_t wanted = m_subject[token->start + index];
            const char16_t unit = m_subject[at + index];
            if (wanted != unit && !(node.ignoreCase && lower(wanted) == lower(unit))) {
                return false;
            }
        }
        return next(at + token->length, tokens);
    }

    bool conditional(const Node& node, size_t at, const Tokens& tokens, Next next) {
        Tokens after = tokens;
        bool first = false;
        if (node.condition) {
            const bool held = holds(*node.condition, at, tokens, after);
            first = held != node.condition->negated;
            after = first && held ? after : tokens;  // a negated assertion leaves no trace
        } else {
            const Token* token = findToken(node, tokens);
            first = token != nullptr && token->length != 0;
        }
        return run(*node.children[first ? 0 : 1], at, after, next);
    }

    bool anchorHolds(char letter, size_t at) const {
        const bool atStart = at == 0;
        const bool atEnd = at == m_subject.size();
        switch (letter) {
            case '^':
                return atStart;
            case '$':
                return atEnd;
            case '(':
                return atStart || m_subject[at - 1] == u'\n';
            case ')':
                return atEnd || m_subject[at] == u'\n';
            case '<':
                return atStart || !isWord(m_subject[at - 1]);
            default:
                return atEnd || !isWord(m_subject[at]);
        }
    }

    std::u16string_view m_subject;
    size_t m_stepsLeft;
    size_t m_depth = 0;
};

Outcome searchFrom(const Pattern& pattern, bool emptyAccepted, std::u16string_view subject, size_t offset,
                   size_t steps) {
    Matcher matcher(subject, steps);
    Outcome outcome;
    for (size_t start = offset; start <= subject.size() && !outcome.matched; ++start) {
        outcome.matched = matcher.run(*pattern.root, start, {}, [&](size_t end, const Tokens& tokens) {
            if (end == start && !emptyAccepted) {
                return false;
            }
            outcome = {false, start, end - start, tokens};
            return true;
        });
    }
    return outcome.matched ? outcome : Outcome();
}

}  // namespace

std::optional<Outcome> search(const Pattern& pattern, unsigned flagBits, std::u16string_view subject,
                              size_t offset, Limits limits) {
    try {
        return searchFrom(pattern, (flagBits & 0x20U) != 0, subject, offset, limits.steps);
    } catch (const GaveUp&) {
        return std::nullopt;
    }
}

std::optional<Outcome> search(std::u16string_view pattern, unsigned flagBits, std::u16string_view subject,
                              size_t offset, Limits limits) {
    const std::optional<Pattern> parsed = parse(pattern, flagBits);
    return parsed ? search(*parsed, flagBits, subject, offset, limits) : std::nullopt;
}

}  // namespace corvane_tests::reference
