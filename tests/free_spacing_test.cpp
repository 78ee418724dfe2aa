// Blanks and comments that free spacing allows between the parts of a pattern change nothing, whatever brackets the
// comments hold. CORVANE_TEST_SEED and CORVANE_TEST_ROUNDS as in random_test.cpp.
//
// The oracle is the same pattern without them, by the engine, and by the reference where that can read it.
#include "tests/support/differential.h"
#include "tests/support/pattern_random.h"
#include "tests/support/reference_matcher.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace corvane_tests {
namespace {

/// Takes a pattern of `PatternSource` apart and puts spacing wherever some is allowed. It knows the parts of the
/// dialect just well enough not to put any inside one of them.
class Spacer {
public:
    Spacer(std::u16string_view pattern, PatternSource& source) : m_pattern(pattern), m_source(source) {}

    std::u16string spaced() {
        while (m_at < m_pattern.size()) {
            space();
            part();
        }
        space();
        return m_out;
    }

private:
    /// Blanks, line ends and comments of random units, brackets above all: a reader that pairs brackets without knowing
    /// of comments loses count here.
    void space() {
        static constexpr std::u16string_view units = u"()[]{}<>?*+|\\#^$:=!1a, ";
        for (size_t way = m_source.below(8); way < 3; way = m_source.below(6)) {
            m_out += way == 0 ? u" " : way == 1 ? u"\n\t" : u"#";
            for (size_t left = way == 2 ? m_source.below(5) : 0; left > 0; --left) {
                m_out += units[m_source.below(units.size())];
            }
            m_out += way == 2 ? u"\n" : u"";
        }
    }
    void take(size_t units) {
        m_out += m_pattern.substr(m_at, units);
        m_at += units;
    }
    /// At least one unit.
    void takeThrough(std::u16string_view last) { take(m_pattern.find_first_of(last, m_at + 1) + 1 - m_at); }
    /// A bracket that comes first in a set, or is escaped, is a member.
    void takeSet() {
        size_t end = m_at + (m_pattern.substr(m_at).starts_with(u"[^") ? 2 : 1);
        do {
            end += m_pattern[end] == u'\\' ? 2 : 1;
        } while (m_pattern[end] != u']');
        take(end + 1 - m_at);
    }
    void takeEscape() {
        if (sees(u"\\x{") || sees(u"\\o{")) {
            takeThrough(u"}");
            return;
        }
        const bool isHexadecimal = sees(u"\\x");
        const size_t end = m_pattern.find_first_not_of(isHexadecimal ? u"0123456789abcdefABCDEF" : u"0123456789",
                                                       m_at + (isHexadecimal ? 2 : 1));
        take(std::max<size_t>(2, std::min(end, m_pattern.size()) - m_at));
    }
    bool sees(std::u16string_view text) const { return m_pattern.substr(m_at).starts_with(text); }
    void takeQualifier() { take(sees(u"?") || sees(u"+") ? 1 : 0); }

    void name() {
        space();
        take(m_pattern.find(u'>', m_at) - m_at);
        space();
        take(1);
    }
    void quantifierInBraces() {
        for (take(1); !sees(u"}"); space()) {
            space();
            take(sees(u",") ? 1 : m_pattern.find_first_not_of(u"0123456789", m_at) - m_at);
        }
        take(1);
        takeQualifier();
    }
    void part() {
        static constexpr std::u16string_view openings[] = {u"(?<=", u"(?<!",   u"(?=",    u"(?!",   u"(?:",
                                                           u"(?>",  u"(?(?<=", u"(?(?<!", u"(?(?=", u"(?(?!"};
        const auto* const opening = std::ranges::find_if(openings, [this](std::u16string_view it) { return sees(it); });
        if (sees(u"\\k<") || (sees(u"(?<") && opening == std::end(openings))) {
            take(3);
            name();
        } else if (sees(u"\\")) {
            takeEscape();
        } else if (sees(u"[")) {
            takeSet();
        } else if (opening != std::end(openings)) {
            take(opening->size());
        } else if (sees(u"(?")) {
            takeThrough(u"):");
        } else if (sees(u"{")) {
            quantifierInBraces();
        } else {
            const bool isQuantifier = sees(u"*") || sees(u"+") || sees(u"?");
            take(1);
            if (isQuantifier) {
                takeQualifier();
            }
        }
    }

    std::u16string_view m_pattern;
    PatternSource& m_source;
    std::u16string m_out;
    size_t m_at = 0;
};

std::string numbersOf(const std::vector<Warning>& warnings) {
    std::string numbers;
    for (const Warning& warning : warnings) {
        numbers += std::to_string(warning.number) + " ";
    }
    return numbers;
}

// The same answer and the same warnings. Patterns with blanks or # of their own would mean something else when spaced.
TEST(FreeSpacing, BetweenThePartsOfAPatternChangesNothing) {
    const std::uint64_t seed = environmentNumber("CORVANE_TEST_SEED", 35);
    PatternSource source(seed);
    size_t read = 0;
    for (unsigned long left = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 1000 : 10000); left > 0; --left) {
        // What is free of blanks and signs of its own, or turns the mode off, is not spaced.
        const std::u16string pattern = source.pattern(kModes | kDynamics);
        if (pattern.find(u'#') != pattern.npos || pattern.find(u' ') != pattern.npos) {
            continue;
        }
        const std::u16string spaced = Spacer(pattern, source).spaced();
        const Engine tight(pattern, kEmptyToo), loose(spaced, kEmptyToo | RE_FLAG_FREE_SPACING);
        ASSERT_EQ(numbersOf(tight.warnings()), numbersOf(loose.warnings()))
            << printable(pattern) << "  as  " << printable(spaced) << " seed " << seed;
        for (int count = 0; count < 4; ++count) {
            const std::u16string subject = source.subject(8);
            const std::string expected = describe(tight.search(subject));
            ASSERT_EQ(expected, describe(loose.search(subject))) << printable(pattern) << "  as  " << printable(spaced)
                                                                 << " on " << printable(subject) << " seed " << seed;
            const auto reading = reference::search(spaced, kEmptyToo | RE_FLAG_FREE_SPACING, subject, 0, {20000});
            read += reading ? 1 : 0;
            ASSERT_EQ(expected, reading ? describe(*reading) : expected)
                << printable(spaced) << " on " << printable(subject) << " seed " << seed;
        }
    }
    EXPECT_GT(read, 0U);
}

}  // namespace
}  // namespace corvane_tests
