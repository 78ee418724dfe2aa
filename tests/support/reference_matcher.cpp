// Continuation-passing backtracking: every construct is one short function that calls `next` for each way it can match,
// in order of preference, until `next` says true. Tokens travel by value along the path, so a path that fails leaves
// nothing behind.
//
// Nothing may be made faster here by a rule that the engine also uses: two readings of the dialect that share a
// shortcut share its faults. There is no memo, no undo, no bound on passes but the pattern's own.
#include "tests/support/reference_matcher.h"

#include "tests/support/function_ref.h"
#include "tests/support/reference_expansion.h"
#include "tests/support/reference_parser.h"
#include "tests/support/reference_tokens.h"
#include "tests/support/reference_units.h"

#include <algorithm>
#include <map>

namespace corvane_tests::reference {
namespace {

// Thrown at the limits of steps and depth, and where another engine's rule is not known. No answer then.
struct GaveUp {};

// Nodes on a path, each of which takes some hundred bytes of the stack. Together with the steps this bounds the stack
// of the thread that runs the tests.
constexpr size_t kDeepest = 2000;

// What follows a part: called with the position where the part ended and the tokens by then.
using Next = FunctionRef<bool(size_t, const Tokens&)>;

/// A unit is in a set when anything in the set is the same unit, as case counts or is ignored.
bool acceptsUnit(const Node& node, char16_t unit) {
    const std::u16string cases = node.ignoreCase ? casesOf(unit) : std::u16string(1, unit);
    const bool in = std::any_of(node.ranges.begin(), node.ranges.end(), [&](const Range& range) {
        return std::any_of(cases.begin(), cases.end(),
                           [&](char16_t each) { return range.low <= each && each <= range.high; });
    });
    return in != node.negated;
}

const Slot* findToken(const Node& node, const Tokens& tokens) {
    return node.name.empty() ? tokens.numbered(node.number) : tokens.named(node.name);
}

/// What an expression sees of the search.
struct Here : Place {
    std::u16string_view subject;
    size_t start;
    size_t at;
    const Tokens& tokens;

    Here(std::u16string_view text, size_t from, size_t to, const Tokens& those)
        : subject(text), start(from), at(to), tokens(those) {}

    std::optional<std::u16string> text(const Slot* slot) const {
        return slot == nullptr ? std::nullopt
                               : std::optional<std::u16string>(subject.substr(slot->start, slot->length));
    }
    std::optional<std::u16string> numbered(size_t slot) const override { return text(tokens.numbered(slot)); }
    std::optional<std::u16string> named(std::u16string_view name) const override { return text(tokens.named(name)); }
    std::u16string special(char16_t sign) const override {
        if (at < start) {
            throw GaveUp();  // in a look-behind: there is no match up to here
        }
        return std::u16string(sign == u'`'    ? subject.substr(0, start)
                              : sign == u'\'' ? subject.substr(at)
                                              : subject.substr(start, at - start));
    }
};

/// How many units the node consumes, where that is always the same.
std::optional<size_t> fixedLength(const Node& node) {
    const auto ofAll = [&](bool added) -> std::optional<size_t> {
        std::optional<size_t> total;
        for (const NodePtr& child : node.children) {
            const std::optional<size_t> length = fixedLength(*child);
            if (!length || (!added && total && *total != *length)) {
                return std::nullopt;
            }
            total = added ? total.value_or(0) + *length : *length;
        }
        return total.value_or(0);
    };
    switch (node.kind) {
        case Kind::Sequence:
        case Kind::Capture:
        case Kind::Atomic:
            return ofAll(true);
        case Kind::Alternation:
        case Kind::Conditional:
            return ofAll(false);
        case Kind::Unit:
            return 1;
        case Kind::Repeat:
            if (const auto length = fixedLength(*node.children[0]); length && node.min == node.max) {
                return *length * node.min;
            }
            return std::nullopt;
        case Kind::Look:
        case Kind::Anchor:
            return 0;
        case Kind::Reference:
        case Kind::Dynamic:
            break;
    }
    return std::nullopt;
}

/// One attempt from one start position.
class Matcher {
public:
    Matcher(std::u16string_view subject, size_t start, size_t& steps, Rules rules)
        : m_subject(subject), m_start(start), m_stepsLeft(steps), m_rules(rules) {}

    bool run(const Node& node, size_t at, const Tokens& tokens, Next next) {
        if (m_stepsLeft-- == 0 || m_depth >= kDeepest) {
            throw GaveUp();
        }
        ++m_depth;
        const bool matched = runKind(node, at, tokens, next);
        --m_depth;
        return matched;
    }

private:
    // One case for each kind of node. Those without a function of their own are a test and a call of `next`.
    bool runKind(const Node& node, size_t at, const Tokens& tokens, Next next) {
        switch (node.kind) {
            case Kind::Sequence:
                return sequence(node, 0, at, tokens, next);
            case Kind::Alternation:
                return alternation(node, at, tokens, next);
            case Kind::Unit:
                return at < m_subject.size() && acceptsUnit(node, m_subject[at]) && next(at + 1, tokens);
            case Kind::Repeat:
                return repeat(node, 0, at, tokens, next);
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
            case Kind::Dynamic:
                return dynamic(node, at, tokens, next);
        }
        return false;
    }

    bool sequence(const Node& node, size_t index, size_t at, const Tokens& tokens, Next next) {
        if (index == node.children.size()) {
            return next(at, tokens);
        }
        return run(*node.children[index], at, tokens,
                   [&](size_t end, const Tokens& after) { return sequence(node, index + 1, end, after, next); });
    }

    bool alternation(const Node& node, size_t at, const Tokens& tokens, Next next) {
        return std::any_of(node.children.begin(), node.children.end(),
                           [&](const NodePtr& branch) { return run(*branch, at, tokens, next); });
    }

    /// The first `min` passes are required and may be empty; a further pass must consume something. Where one
    /// pass is all there can be, it is a plain choice, and may be empty too.
    bool repeat(const Node& node, size_t passes, size_t at, const Tokens& tokens, Next next) {
        const bool required = passes < node.min;
        const bool mayBeEmpty = required || node.max == 1 || !isOwn();
        if (!required && node.lazy && next(at, tokens)) {
            return true;
        }
        const bool again =
            passes < node.max && run(*node.children[0], at, tokens, [&](size_t end, const Tokens& after) {
                if (end == at && leavesWhenEmpty(node, passes)) {
                    return next(end, after);
                }
                return (mayBeEmpty || end != at) && repeat(node, passes + 1, end, after, next);
            });
        return again || (!required && !node.lazy && next(at, tokens));
    }

    /// In PCRE2 an empty pass ends a loop without a maximum, of which the last required pass is the first.
    bool leavesWhenEmpty(const Node& node, size_t passes) const {
        return !isOwn() && node.max == std::numeric_limits<size_t>::max() && passes + 1 >= node.min;
    }

    bool capture(const Node& node, size_t at, const Tokens& tokens, Next next) {
        return run(*node.children[0], at, tokens, [&](size_t end, const Tokens& after) {
            Tokens closed = after;
            closed.close(node.number, at, end);
            return next(end, closed);
        });
    }

    /// First way through `body` from `at` that ends where `accept` allows; no way back into it afterwards.
    bool closed(const Node& body, size_t at, const Tokens& tokens, FunctionRef<bool(size_t)> accept, size_t& end,
                Tokens& after) {
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
        Tokens after = tokens;
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
        if (!isOwn()) {
            return holdsBranchByBranch(body, at, tokens, after);
        }
        for (size_t start = at + 1; start-- > 0;) {
            if (closed(
                    body, start, tokens, [&](size_t position) { return position == at; }, end, after)) {
                return true;
            }
        }
        return false;
    }

    /// Each branch of a look-behind has its one length there.
    bool holdsBranchByBranch(const Node& body, size_t at, const Tokens& tokens, Tokens& after) {
        if (body.kind == Kind::Alternation) {
            return std::any_of(body.children.begin(), body.children.end(),
                               [&](const NodePtr& branch) { return holdsBranchByBranch(*branch, at, tokens, after); });
        }
        const std::optional<size_t> length = fixedLength(body);
        if (!length) {
            throw GaveUp();
        }
        size_t end = at;
        return *length <= at && closed(
                                    body, at - *length, tokens, [](size_t) { return true; }, end, after);
    }

    // A negated body leaves no tokens; a body that held leaves its own.
    bool look(const Node& node, size_t at, const Tokens& tokens, Next next) {
        Tokens after = tokens;
        const bool held = holds(node, at, tokens, after);
        return held != node.negated && next(at, held ? after : tokens);
    }

    bool reference(const Node& node, size_t at, const Tokens& tokens, Next next) {
        const Slot* token = findToken(node, tokens);
        if (token == nullptr || (!isOwn() && !token->closed) || token->length > m_subject.size() - at) {
            return false;
        }
        for (size_t index = 0; index < token->length; ++index) {
            const char16_t wanted = m_subject[token->start + index];
            const char16_t unit = m_subject[at + index];
            if (wanted != unit && !(node.ignoreCase && sameIgnoringCase(wanted, unit))) {
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
            after = held && (first || !isOwn()) ? after : tokens;  // one that is negated leaves no trace
        } else if (!node.expansion.empty()) {
            first = evaluate(node.expansion[0].text, Here(m_subject, m_start, at, tokens)).has_value();
        } else {
            const Slot* token = findToken(node, tokens);
            first = token != nullptr && (isOwn() ? token->length != 0 : token->closed);
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
                return atStart || (m_subject[at - 1] == u'\n' && (isOwn() || !atEnd));
            case ')':
                return atEnd || m_subject[at] == u'\n';
            case '<':
                return atStart || !isWord(m_subject[at - 1]);
            default:
                return atEnd || !isWord(m_subject[at]);
        }
    }

    /// The text matches as if it stood here. It makes no tokens, and sees those of the pattern.
    bool dynamic(const Node& node, size_t at, const Tokens& tokens, Next next) {
        const std::optional<std::u16string> text = expand(node.expansion, Here(m_subject, m_start, at, tokens));
        if (!text) {
            return false;
        }
        // A text is parsed once for each place and content; loops would parse it for every pass.
        std::optional<Pattern>& included = m_included[{&node, *text}];
        if (!included) {
            included = parseIncluded(*text, node.modes);
        }
        if (!included) {
            throw GaveUp();
        }
        return run(*included->root, at, tokens, next);
    }

    bool isOwn() const { return m_rules == Rules::own; }

    std::u16string_view m_subject;
    size_t m_start;
    size_t& m_stepsLeft;
    Rules m_rules;
    size_t m_depth = 0;
    std::map<std::pair<const Node*, std::u16string>, std::optional<Pattern>> m_included;
};

/// The same count of steps for all that one question takes.
Outcome searchFrom(const Pattern& pattern, unsigned flagBits, std::u16string_view subject, size_t offset, size_t& steps,
                   Rules rules) {
    const bool emptyAccepted = (flagBits & 0x20U) != 0;
    const bool keepsTokens = (flagBits & 0x40U) != 0 || rules != Rules::own;
    Outcome outcome;
    for (size_t start = offset; start <= subject.size() && !outcome.matched; ++start) {
        Matcher matcher(subject, start, steps, rules);
        const Tokens none(pattern.tokenNames, keepsTokens);
        outcome.matched = matcher.run(*pattern.root, start, none, [&](size_t end, const Tokens& tokens) {
            if (end == start && !emptyAccepted) {
                return false;
            }
            outcome = {false, start, end - start, tokens.inEffect()};
            return true;
        });
    }
    return outcome.matched ? outcome : Outcome();
}

}  // namespace

std::optional<Outcome> search(const Pattern& pattern, unsigned flagBits, std::u16string_view subject, size_t offset,
                              Limits limits) {
    try {
        return searchFrom(pattern, flagBits, subject, offset, limits.steps, Rules::own);
    } catch (const GaveUp&) {
        return std::nullopt;
    }
}

std::optional<Outcome> search(std::u16string_view pattern, unsigned flagBits, std::u16string_view subject,
                              size_t offset, Limits limits) {
    const std::optional<Pattern> parsed = parse(pattern, flagBits);
    return parsed ? search(*parsed, flagBits, subject, offset, limits) : std::nullopt;
}

std::optional<std::vector<Outcome>> searchAll(const Pattern& pattern, unsigned flagBits, std::u16string_view subject,
                                              size_t offset, Limits limits, Rules rules) {
    std::vector<Outcome> found;
    try {
        while (offset <= subject.size()) {
            const Outcome match = searchFrom(pattern, flagBits, subject, offset, limits.steps, rules);
            if (!match.matched) {
                break;
            }
            found.push_back(match);
            offset = match.start + std::max<size_t>(match.length, 1);
        }
    } catch (const GaveUp&) {
        return std::nullopt;
    }
    return found;
}

}  // namespace corvane_tests::reference
