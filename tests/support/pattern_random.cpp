// The generator mirrors the grammar: one member a construct, with a depth budget.
#include "tests/support/pattern_random.h"

#include <iterator>

namespace corvane_tests {
namespace {

struct Quantifier {
    const char* text;
    bool allowsNone;
};

constexpr Quantifier kQuantifiers[] = {
    {"*", true},     {"*", true},     {"+", false},      {"+", false},     {"?", true},      {"?", true},
    {"*?", true},    {"+?", false},   {"??", true},      {"{2}", false},   {"{3}", false},   {"{1,2}", false},
    {"{0,2}", true}, {"{2,}", false}, {"{1,3}?", false}, {"{0,2}?", true}, {"{1,}?", false}, {"*+", true},
    {"++", false},   {"?+", true},    {"{1,2}+", false}, {"{0}", true},    {"{2,3}", false}};

}  // namespace

std::string PatternSource::pattern(const PatternTraits& traits) {
    m_traits = traits;
    m_groups = 0;
    m_named = false;
    return alternation(3).text;
}

std::u16string PatternSource::subject(size_t longest) {
    static constexpr std::u16string_view letters[] = {u"ab", u"aab", u"abc", u"abcA_ \n1"};
    const std::u16string_view alphabet = letters[below(std::size(letters))];
    std::u16string text;
    for (size_t left = below(longest + 1); left > 0; --left) {
        text += alphabet[below(alphabet.size())];
    }
    return text;
}

std::u16string PatternSource::runs(size_t most, size_t longestRun) {
    std::u16string text;
    for (const char16_t unit : subject(most)) {
        text.append(oneIn(2) ? 1 + below(longestRun) : 1, unit);
    }
    return text;
}

PatternSource::Piece PatternSource::alternation(int depth) {
    if (oneIn(6)) {
        return wideAlternation(depth);
    }
    Piece result = sequence(depth);
    for (size_t more = oneIn(3) ? 1 + below(2) : 0; more > 0; --more) {
        const Piece branch = sequence(depth);
        result.text += "|" + branch.text;
        result.nullable = result.nullable || branch.nullable;
    }
    return result;
}

// Literals that begin alike, some of them equal, and branches of other kinds among them.
PatternSource::Piece PatternSource::wideAlternation(int depth) {
    static constexpr const char* words[] = {"a", "ab", "abc", "abca", "aab", "b", "ba", "bab", "bc", "c", "A", "aB"};
    Piece result{"", false};
    for (size_t left = 3 + below(4); left > 0; --left) {
        const Piece branch = oneIn(4) ? sequence(depth) : Piece{words[below(std::size(words))], false};
        result.text += branch.text + (left > 1 ? "|" : "");
        result.nullable = result.nullable || branch.nullable;
    }
    return result;
}

PatternSource::Piece PatternSource::sequence(int depth) {
    Piece result{"", true};
    if (m_traits.modes && oneIn(40)) {
        static constexpr const char* modes[] = {"(?i)", "(?-i)",  "(?s)", "(?-s)",
                                                "(?m)", "(?i-m)", "(?x)", "(?#note)"};
        result.text += modes[below(std::size(modes))];
    }
    const size_t count = oneIn(12) && m_traits.nullableLoops ? 0 : 1 + below(3);
    for (size_t index = 0; index < count; ++index) {
        const Piece next = item(depth);
        result.text += next.text;
        result.nullable = result.nullable && next.nullable;
    }
    return result;
}

PatternSource::Piece PatternSource::item(int depth) {
    Piece piece = atom(depth);
    if (oneIn(2)) {
        bool nullable = false;
        piece.text += quantifier(piece.nullable, nullable);
        piece.nullable = piece.nullable || nullable;
    }
    return piece;
}

std::string PatternSource::quantifier(bool bodyNullable, bool& nullable) {
    if (bodyNullable && !m_traits.nullableLoops) {
        return "";
    }
    const Quantifier& chosen = kQuantifiers[below(std::size(kQuantifiers))];
    if (!m_traits.atomics && chosen.text[1] == '+') {
        return "";
    }
    nullable = chosen.allowsNone;
    return chosen.text;
}

PatternSource::Piece PatternSource::atom(int depth) {
    return depth > 0 && oneIn(2) ? group(depth - 1) : simpleAtom();
}

PatternSource::Piece PatternSource::simpleAtom() {
    static constexpr const char* units[] = {"a",    "a",     "a",   "b",   "b",   "c",   ".", "[ab]",
                                            "[^a]", "[a-c]", "\\w", "\\W", "\\d", "\\s", "A", "ab"};
    if (oneIn(9)) {
        static constexpr const char* anchors[] = {"^", "$", "\\<", "\\>"};
        return {anchors[below(m_traits.words ? 4 : 2)], true};
    }
    if (m_traits.references && m_groups > 0 && oneIn(5)) {
        return reference();
    }
    const std::string unit = units[below(std::size(units))];
    return {unit, false};
}

PatternSource::Piece PatternSource::reference() {
    if (m_named && oneIn(3)) {
        return {"\\k<n>", true};
    }
    return {"\\" + std::to_string(1 + below(m_groups)), true};
}

PatternSource::Piece PatternSource::group(int depth) {
    const size_t choice = below(12);
    if (choice == 0 && m_traits.atomics) {
        const Piece body = alternation(depth);
        return {"(?>" + body.text + ")", body.nullable};
    }
    if (choice <= 2 && m_traits.lookarounds) {
        return lookaround(depth);
    }
    if (choice == 3 && m_traits.conditions) {
        return conditional(depth);
    }
    if (choice == 4 && m_traits.modes) {
        const Piece body = alternation(depth);
        return {(oneIn(2) ? "(?i:" : "(?-s:") + body.text + ")", body.nullable};
    }
    if (choice <= 8 && m_traits.captures) {
        return capture(depth);
    }
    const Piece body = alternation(depth);
    return {"(?:" + body.text + ")", body.nullable};
}

PatternSource::Piece PatternSource::capture(int depth) {
    ++m_groups;
    const bool named = oneIn(6) && m_traits.references;
    const Piece body = alternation(depth);
    m_named = m_named || named;
    return {(named ? "(?<n>" : "(") + body.text + ")", body.nullable};
}

PatternSource::Piece PatternSource::lookaround(int depth) {
    static constexpr const char* openings[] = {"(?=", "(?!", "(?<=", "(?<!"};
    const Piece body = alternation(depth > 0 ? depth - 1 : 0);
    return {openings[below(std::size(openings))] + body.text + ")", true};
}

PatternSource::Piece PatternSource::conditional(int depth) {
    std::string condition;
    if (m_traits.references && m_groups > 0 && oneIn(2)) {
        condition = m_named && oneIn(3) ? "(n)" : "(" + std::to_string(1 + below(m_groups)) + ")";
    } else {
        condition = lookaround(0).text;
    }
    const Piece yes = sequence(depth);
    const Piece no = oneIn(3) ? Piece{"", true} : alternation(depth);
    return {"(?" + condition + yes.text + (no.text.empty() ? "" : "|" + no.text) + ")", true};
}

}  // namespace corvane_tests
