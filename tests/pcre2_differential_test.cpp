// PCRE2 as a second opinion, in two steps. The reference matcher knows the differences of docs/dialect.md as rules:
// by those of PCRE2 it has to find what PCRE2 finds, all matches and all tokens, in everything that both can read.
// And where no rule comes into play, the engine itself has to.
#include "tests/support/differential.h"
#include "tests/support/pcre2_peer.h"
#include "tests/support/reference_matcher.h"
#include "tests/support/reference_parser.h"
#include "tests/support/subject_random.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace corvane_tests {
namespace {

#ifdef CORVANE_HAVE_PCRE2

/// Not in PCRE2, or read otherwise there. Case and classes of units beyond ASCII need its Unicode mode, which wants
/// code points.
constexpr unsigned kForeign = kOwn | kWide | kDynamics | kWords;

/// Here a few control characters are blanks as well.
std::u16string inAscii(std::u16string text) {
    for (char16_t& unit : text) {
        unit = unit >= 28 && unit <= 32 ? u' ' : unit < 0x7F ? unit : u'a';
    }
    return text;
}

/// All tokens with their extents only, those that are not in effect like those that took no part.
std::vector<Outcome> extents(std::vector<Outcome> matches, size_t tokens) {
    for (Outcome& match : matches) {
        match.tokens.resize(tokens);
        for (Token& token : match.tokens) {
            token = {token.start, token.length, {}};
        }
    }
    return matches;
}

struct Counts {
    size_t compared = 0;
    size_t found = 0;
    size_t differing = 0;
};

/// Draws patterns that PCRE2 can read and passes them to `difference`, which returns nothing when it cannot judge.
template <typename FindDifference>
void compareWithPeer(std::uint64_t fallbackSeed, unsigned long patterns, unsigned without,
                     const FindDifference& difference) {
    const std::uint64_t seed = environmentNumber("CORVANE_TEST_SEED", static_cast<unsigned long>(fallbackSeed));
    const unsigned long rounds = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? patterns / 10 : patterns);
    PatternSource source(seed);
    Counts counts;
    for (unsigned long round = 0; round < rounds && counts.differing < 10; ++round) {
        const DrawnPattern drawn = round % 2 == 0 ? source.draw(without) : source.drawDense(without);
        const Pcre2Pattern peer(drawn.text, drawn.flags);
        const auto parsed = reference::parse(drawn.text, drawn.flags);
        for (int count = 0; count < 4 && peer.valid() && parsed; ++count) {
            const std::u16string subject = inAscii(drawSubject(source, &*parsed, 10));
            const auto theirs = peer.searchAll(subject, 0);
            if (!theirs) {
                continue;
            }
            const std::optional<std::string> found = difference(drawn, *parsed, subject, *theirs);
            EXPECT_EQ("", found.value_or("")) << printable(drawn.text) << "  flags " << drawn.flags << "  on '"
                                              << printable(subject) << "'; CORVANE_TEST_SEED=" << seed;
            counts.compared += found ? 1 : 0;
            counts.found += theirs->empty() ? 0 : 1;
            counts.differing += found.value_or("").empty() ? 0 : 1;
        }
    }
    EXPECT_GT(counts.compared, rounds * 2);
    EXPECT_GT(counts.found, rounds);
}

TEST(Pcre2Peer, AgreesWithTheReferenceByItsRules) {
    compareWithPeer(31337, 6000, kForeign,
                    [](const DrawnPattern& drawn, const reference::Pattern& parsed, const std::u16string& subject,
                       const std::vector<Outcome>& theirs) -> std::optional<std::string> {
                        const auto ours =
                            reference::searchAll(parsed, drawn.flags, subject, 0, {20000}, reference::Rules::pcre2);
                        if (!ours) {
                            return std::nullopt;
                        }
                        const size_t tokens = parsed.tokenNames.size();
                        const auto expected = extents(theirs, tokens), got = extents(*ours, tokens);
                        return got == expected ? "" : "reference " + describe(got) + "  PCRE2 " + describe(expected);
                    });
}

/// Branch order and nearest start pick different branches of a look-behind body, and a negative condition that does
/// not hold keeps its tokens there.
bool tokensComparable(const std::u16string& pattern) {
    return pattern.find(u"(?<=") == pattern.npos && pattern.find(u"(?<!") == pattern.npos &&
           pattern.find(u"(?(?!") == pattern.npos;
}

/// Those in effect here are as there, or took no part there and are empty.
bool tokensAgree(const Outcome& ours, const Outcome& theirs) {
    for (size_t index = 0; index < ours.tokens.size(); ++index) {
        const Token& token = ours.tokens[index];
        const Token& other = theirs.tokens.at(index);
        if (token.start != other.start || token.length != other.length) {
            return false;
        }
    }
    return true;
}

bool agree(const std::u16string& pattern, const std::vector<Outcome>& ours, const std::vector<Outcome>& theirs) {
    return std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end(),
                      [&](const Outcome& one, const Outcome& other) {
                          return one.start == other.start && one.length == other.length &&
                                 (!tokensComparable(pattern) || tokensAgree(one, other));
                      });
}

// What reads tokens sees fewer here, loops over what may be empty end otherwise, and ^ holds after a last line feed.
TEST(Pcre2Peer, AgreesWithTheEngineOnTheCommonSubset) {
    compareWithPeer(
        1729, 4000, kForeign | kReferences | kHollowLoops,
        [](const DrawnPattern& drawn, const reference::Pattern&, const std::u16string& subject,
           const std::vector<Outcome>& theirs) -> std::optional<std::string> {
            if (subject.ends_with(u'\n')) {
                return std::nullopt;
            }
            const Engine engine(drawn.text, drawn.flags);
            RE_Seek_Table table;
            const auto ours = walkThrough(engine.tree(), subject, 0, Walk::sequence, table);
            return agree(drawn.text, ours, theirs) ? "" : "ours " + describe(ours) + "  PCRE2 " + describe(theirs);
        });
}

/// A reason from docs/dialect.md, and what each engine finds. "invalid": the peer refuses the pattern.
struct KnownDifference {
    const char* reason;
    const char* pattern;
    const char* subject;
    RE_Flags flags;
    const char* ours;
    const char* theirs;
};

// Those that change an extent, by rule of the reference or by what can be read.
constexpr KnownDifference kKnown[] = {
    {"closing a token forgets the higher ones", "((a)b)\\2", "aba", kPlain, "null", "[0,3]"},
    {"a skipped token is present and empty", "(?:(a)|(b))\\1", "b", kPlain, "[0,1]", "null"},
    {"an optional empty pass fails and its body tries on", "(?:|a)*", "aa", kEmptyToo, "[0,2]", "[0,0]"},
    {"an empty token does not satisfy a condition", "(a*)(?(1)b|c)", "c", kPlain, "[0,1]", "null"},
    {"the nearest start of a look-behind comes first", "(?<=(ab)|(b))(?(2)c|d)", "abc", kPlain, "[2,1]", "null"},
    {"a negative condition leaves no token", "(?(?!(a))b|a)(?(1)b|c)", "ac", kPlain, "[0,2]", "null"},
    {"with m a line begins after the last line feed", "(?m)\\n^", "a\n", kPlain, "[1,1]", "null"},
    {"\\b is the backspace unit", "\\ba", "a", kPlain, "null", "[0,1]"},
    {"\\v is one unit", "a\\v", "a\n", kPlain, "null", "[0,2]"},
    {"\\< is a word start", "\\<a", "a", kPlain, "[0,1]", "null"},
    {"a reference takes digits while there are groups", "(a)\\10", "aa0", kPlain, "[0,3]", "null"},
    {"a comment ends at its paired parenthesis", "a(?#(b))c", "ac", kPlain, "[0,2]", "invalid"},
    {"blanks may stand in counts", "(?x)a{ 2 }", "aa", kPlain, "[0,2]", "null"},
    {"look-behind bodies may be unbounded", "(?<=a+)b", "aab", kPlain, "[2,1]", "invalid"},
    {"further bars belong to the second branch", "(?(?=a)a|b|c)", "c", kPlain, "[0,1]", "invalid"},
    {"ranges may be reversed", "[c-a]", "b", kPlain, "[0,1]", "invalid"},
    {"a hyphen beside a class is literal", "[\\d-a]", "-", kPlain, "[0,1]", "invalid"},
    {"names may be used again", "(?<n>a)(?<n>b)", "ab", kPlain, "[0,2]", "invalid"},
};

std::string extent(const Outcome& outcome) {
    return describe(Outcome{outcome.matched, outcome.start, outcome.length, {}});
}

// A difference that goes away, in either engine, fails here, and its row in docs/dialect.md has to go too.
TEST(Pcre2Peer, DiffersExactlyWhereItIsKnownTo) {
    for (const KnownDifference& known : kKnown) {
        const std::u16string pattern = widen(known.pattern);
        EXPECT_EQ(known.ours, extent(Engine(pattern, known.flags).search(widen(known.subject)))) << known.reason;
        const Pcre2Pattern peer(pattern, known.flags);
        EXPECT_EQ(known.theirs, peer.valid() ? extent(peer.search(widen(known.subject), 0).value()) : "invalid")
            << known.reason;
    }
}

#else

TEST(Pcre2Peer, AgreesOnTheCommonSubset) {
    GTEST_SKIP() << "built without PCRE2";
}

#endif

}  // namespace
}  // namespace corvane_tests
