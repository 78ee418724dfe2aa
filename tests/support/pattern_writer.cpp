// What is drawn: rows of the tables, side by side, inside each other and as alternatives. pattern_row.cpp writes a row.
#include "tests/support/pattern_writer.h"

#include "regexp/base/flags.h"
#include "tests/support/text.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace corvane_tests {
namespace {

constexpr size_t kUsualLeaves = 7;     // the first ones of the table: short literals
constexpr size_t kUsualContexts = 11;  // groups and alternatives

}  // namespace

Coverage::Coverage()
    : m_constructs(leafConstructs().size() + contextConstructs().size()),
      m_counts(m_constructs * contextConstructs().size()) {}

const Construct& Coverage::construct(size_t number) {
    const auto& leaves = leafConstructs();
    return number < leaves.size() ? leaves[number] : contextConstructs()[number - leaves.size()];
}

bool Coverage::isPossible(size_t construct, size_t context) {
    return (Coverage::construct(construct).traits & contextConstructs()[context].bars) == 0;
}

PatternWriter::PatternWriter(std::mt19937_64& random, Coverage& coverage, unsigned modes, unsigned without, bool dense)
    : m_random(random), m_coverage(coverage), m_modes(modes), m_without(without), m_dense(dense) {}

std::u16string PatternWriter::pattern() {
    return finish(alternation(3).text);
}

std::u16string PatternWriter::pattern(std::vector<std::vector<size_t>> wanted) {
    std::reverse(wanted.begin(), wanted.end());
    m_wanted = std::move(wanted);
    Piece whole{u"", true, false, false};
    // A reference without a group in front of it would be refused nearly always.
    const bool readsTokens = std::any_of(m_wanted.begin(), m_wanted.end(), [](const auto& list) {
        return std::any_of(list.begin(), list.end(),
                           [](size_t row) { return (Coverage::construct(row).traits & kReferences) != 0; });
    });
    const size_t first = m_wanted.back().front();
    m_wanted.pop_back();
    if ((readsTokens || (oneIn(3) && !m_dense)) && (m_without & kCaptures) == 0) {
        ++m_groups;
        whole.text = oneIn(2) ? u"(a|b)" : u"(b)?";
    }
    if (oneIn(3) && !m_dense) {
        append(whole, few());
    }
    append(whole, write(first, 1));
    if (oneIn(2) && !m_dense) {
        append(whole, item(1));
    }
    return finish(std::move(whole.text));
}

std::u16string PatternWriter::row(const std::vector<size_t>& constructs) {
    Piece whole{u"", true, false, false};
    for (const size_t construct : constructs) {
        append(whole, write(construct, 0));
    }
    return finish(std::move(whole.text));
}

/// Adds the groups whose names were referred to before they were there.
std::u16string PatternWriter::finish(std::u16string text) {
    while (!m_namesDue.empty()) {
        const std::u16string name = *m_namesDue.begin();
        text += u"(?<" + name + u">" + (oneIn(2) ? u"a)?" : u"b|c|)");
        defineName(name);
    }
    return text;
}

void PatternWriter::noteDrawn(size_t construct) {
    for (const size_t context : m_inside) {
        m_coverage.note(construct, context);
    }
}

// What a construct bars is barred in its body, at any depth.
Piece PatternWriter::body(size_t context, int depth) {
    const unsigned without = std::exchange(m_without, m_without | contextConstructs()[context].bars);
    m_inside.push_back(context);
    Piece piece = !m_wanted.empty()       ? wantedBody()
                  : depth > 0 && oneIn(2) ? alternation(depth - 1)
                                          : sequence(depth - 1);
    m_inside.pop_back();
    m_without = without;
    return piece;
}

// Only the last construct's body has wishes of its own; what is written beside it is as free as ever.
Piece PatternWriter::wantedBody() {
    const std::vector<size_t> constructs = std::move(m_wanted.back());
    m_wanted.pop_back();
    const bool divided = constructs.size() > 1 && oneIn(3);
    Piece result{u"", !divided, constructs.size() == 1, divided};
    auto later = std::exchange(m_wanted, {});
    for (size_t left = constructs.size(); left > 0; --left) {
        if (left == 1) {
            m_wanted = std::move(later);
        }
        const size_t wanted = constructs[constructs.size() - left];
        Piece next = write(allows(Coverage::construct(wanted)) ? wanted : 0, 1);
        if (oneIn(3) && !m_dense) {
            append(next, item(0));
        }
        result.text += next.text + (divided && left > 1 ? u"|" : u"");
        result.nullable = divided ? result.nullable || next.nullable : result.nullable && next.nullable;
        result.isAtom = result.isAtom && next.isAtom;
    }
    return result;
}

void PatternWriter::append(Piece& piece, const Piece& next) {
    piece.text += next.text + spacing();
    piece.nullable = piece.nullable && next.nullable;
    piece.isAtom = false;
}

/// What free spacing allows after an item.
std::u16string PatternWriter::spacing() {
    if (!hasMode(RE_FLAG_FREE_SPACING) || !oneIn(3)) {
        return u"";
    }
    static constexpr const char16_t* blanks[] = {u" ", u"\n", u"\t ", u"# ) [a\n"};
    return blanks[below(std::size(blanks) - ((m_without & kHiding) != 0 ? 1 : 0))];
}

Piece PatternWriter::alternation(int depth) {
    if (oneIn(8)) {
        return wideAlternation(depth);
    }
    Piece result = sequence(depth);
    for (size_t more = oneIn(3) ? 1 + below(2) : 0; more > 0; --more) {
        const Piece branch = sequence(depth);
        result = {result.text + u"|" + branch.text, result.nullable || branch.nullable, false, true};
    }
    return result;
}

// Literals that begin alike, some of them equal, and branches of other kinds among them.
Piece PatternWriter::wideAlternation(int depth) {
    static constexpr const char16_t* words[] = {u"a",  u"ab",  u"abc", u"abca", u"aab", u"b",
                                                u"ba", u"bab", u"bc",  u"c",    u"A",   u"aB"};
    Piece result{u"", false, false, true};
    for (size_t left = 3 + below(4); left > 0; --left) {
        const Piece branch = oneIn(4) ? sequence(depth) : Piece{words[below(std::size(words))], false};
        result.text += branch.text + (left > 1 ? u"|" : u"");
        result.nullable = result.nullable || branch.nullable;
    }
    return result;
}

// Now and then empty: a branch without anything is a construct of its own.
Piece PatternWriter::sequence(int depth) {
    Piece result{u"", true, false, false};
    const size_t count = m_dense ? 1 + (oneIn(4) ? 1 : 0) : oneIn(12) ? 0 : 1 + below(3);
    for (size_t index = 0; index < count; ++index) {
        const Piece next = item(depth);
        append(result, next);
        result.isAtom = count == 1 && next.isAtom;
    }
    return result;
}

Piece PatternWriter::item(int depth) {
    return depth > 0 && oneIn(2) ? write(leafConstructs().size() + someContext(), depth - 1) : write(someLeaf(), 0);
}

// Mostly plain units: what surrounds the constructs should match often.
Piece PatternWriter::few() {
    Piece result{u"", true, false, false};
    for (size_t left = m_dense ? 1 : 1 + below(2); left > 0; --left) {
        append(result, write(m_dense ? someLeaf() : below(kUsualLeaves), 0));
        result.text += oneIn(6) && !m_dense ? u"?" : u"";
    }
    return result;
}

// Half of the draws come from the usual rows. A reader of tokens is mostly avoided while there is no token.
size_t PatternWriter::someRow(const std::vector<Construct>& rows, size_t usual) {
    const size_t row = oneIn(2) ? below(usual) : below(rows.size());
    const bool inVain = (rows[row].traits & kReferences) != 0 && m_groups == 0 && !oneIn(4);
    return allows(rows[row]) && !inVain ? row : below(usual);
}

size_t PatternWriter::someLeaf() {
    if (m_dense) {
        return oneIn(6) ? below(kUsualLeaves) : below(2);
    }
    return someRow(leafConstructs(), kUsualLeaves);
}

size_t PatternWriter::someContext() {
    for (;;) {
        const size_t row = someRow(contextConstructs(), kUsualContexts);
        if (allows(contextConstructs()[row])) {
            return row;
        }
    }
}

// Up to two more than there are with `later`: groups that come after, or never.
std::u16string PatternWriter::groupNumber(bool later) {
    const size_t most = m_groups + (later && (m_without & kOwn) == 0 ? 2 : 0);
    return widen(std::to_string(1 + below(std::max<size_t>(most, 1))));
}

std::u16string PatternWriter::knownName() {
    static constexpr const char16_t* names[] = {u"n", u"m", u"o"};
    const std::u16string name = names[below(std::size(names))];
    if (m_names.count(name) == 0 && m_isRead) {
        m_namesDue.insert(name);
    }
    return name;
}

// Other engines want names that differ.
std::u16string PatternWriter::newName() {
    std::u16string name = m_namesDue.empty() ? u"n" : *m_namesDue.begin();
    if (oneIn(3)) {
        name = u"m";
    }
    if ((m_without & kOwn) != 0 && m_names.count(name) != 0) {
        name = u"u" + widen(std::to_string(m_groups));
    }
    defineName(name);
    return name;
}

void PatternWriter::defineName(const std::u16string& name) {
    if (m_makesTokens) {
        m_names.insert(name);
        m_namesDue.erase(name);
    }
}

}  // namespace corvane_tests
