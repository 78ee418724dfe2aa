// Two contexts inside each other and two leaves within: over a sweep each context is in each, and each leaf in each,
// whatever chance adds. The place in a sweep decides the constructs, the random numbers everything around.
#include "tests/support/pattern_random.h"

#include <algorithm>
#include <iterator>

namespace corvane_tests {
namespace {

bool fits(size_t construct, unsigned without) {
    return (Coverage::construct(construct).traits & without) == 0;
}

/// What dense patterns combine: contexts, leaves that may be empty, and four plain units. Tests of a unit behave alike
/// in all contexts, and pairs of them would take up most of a sweep.
const std::vector<size_t>& denseRows() {
    static const std::vector<size_t> rows = [] {
        std::vector<size_t> result = {0, 3, 5, 6};
        const size_t leaves = leafConstructs().size();
        for (size_t number = 0; number < leaves + contextConstructs().size(); ++number) {
            if (number >= leaves || Coverage::construct(number).empty != Empty::never) {
                result.push_back(number);
            }
        }
        return result;
    }();
    return rows;
}

/// The first row from `number` on, around the table, that may be written without the traits; a row that may not if
/// there is none.
size_t nextFitting(size_t number, size_t first, size_t count, unsigned without) {
    for (size_t tried = 0; tried < count; ++tried, ++number) {
        if (fits(first + number % count, without)) {
            break;
        }
    }
    return first + number % count;
}

}  // namespace

std::u16string PatternSource::pattern(unsigned without) {
    return PatternWriter(m_random, m_coverage, RE_DEFAULT_FLAGS, without).pattern();
}

// Rare modes are rare, since they change what much of a pattern means: under most of them less is compared.
RE_Flags PatternSource::flags() {
    const auto oneOf = [this](size_t chances) { return m_random() % chances == 0; };
    RE_Flags result = RE_DEFAULT_FLAGS;
    result |= oneOf(2) ? RE_FLAG_ALLOW_EMPTY : 0U;
    result |= oneOf(4) ? 0x40U : 0U;  // tokens are kept
    result ^= oneOf(8) ? RE_FLAG_IGNORE_CASE : 0U;
    result ^= oneOf(6) ? RE_FLAG_DOT_ALL : 0U;
    result ^= oneOf(6) ? RE_FLAG_LINE_ANCHORS : 0U;
    result ^= oneOf(16) ? RE_FLAG_FREE_SPACING : 0U;
    result ^= oneOf(32) ? RE_FLAG_EVALUATE : 0U;
    return result;
}

size_t PatternSource::sweep() {
    const size_t contexts = contextConstructs().size();
    return contexts * std::max(contexts, leafConstructs().size());
}

// The number of the draw decides the two contexts and the two leaves; flags and the rest are drawn.
DrawnPattern PatternSource::draw(unsigned without) {
    constexpr size_t kStride = 7919;  // a prime, so that a part of a sweep is one of everything
    const size_t leaves = leafConstructs().size(), contexts = contextConstructs().size();
    const size_t place = m_drawn++ * kStride % sweep();
    const size_t inner = nextFitting(place % contexts, leaves, contexts, without);
    const size_t outer = nextFitting(place / contexts, leaves, contexts, without);
    const unsigned within = without | Coverage::construct(inner).bars | Coverage::construct(outer).bars;
    const size_t one = nextFitting(place / contexts, 0, leaves, within);
    const size_t other = nextFitting(place / contexts + leaves / 2, 0, leaves, within);
    const bool asks = ((Coverage::construct(inner).traits | Coverage::construct(outer).traits) & kDynamics) != 0;
    const RE_Flags modes = flags() | (asks ? RE_FLAG_EVALUATE : 0U);
    const bool possible = Coverage::isPossible(inner, outer - leaves);
    PatternWriter writer(m_random, m_coverage, modes, without);
    using Wanted = std::vector<std::vector<size_t>>;
    return {writer.pattern(possible ? Wanted{{outer}, {inner}, {one, other}} : Wanted{{inner}, {one, other}}), modes};
}

size_t PatternSource::denseSweep() {
    return denseRows().size() * denseRows().size();
}

// The same for pairs: side by side, or the second within the first.
DrawnPattern PatternSource::drawDense(unsigned without) {
    constexpr size_t kStride = 7919;
    const std::vector<size_t>& rows = denseRows();
    const size_t place = m_drawnDense++ * kStride % denseSweep();
    size_t one = rows[place % rows.size()], other = rows[place / rows.size()];
    one = fits(one, without) ? one : 0;
    other = fits(other, without) ? other : 0;
    const bool nested = one >= leafConstructs().size() && m_random() % 3 == 0 &&
                        Coverage::isPossible(other, one - leafConstructs().size());
    const RE_Flags modes = flags();
    PatternWriter writer(m_random, m_coverage, modes, without, true);
    return {nested ? writer.pattern({{one}, {other}}) : writer.row({one, other}), modes};
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

}  // namespace corvane_tests
