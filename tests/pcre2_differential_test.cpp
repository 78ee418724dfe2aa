// Random patterns of the subset where PCRE2 and this engine mean the same, and the known differences outside
// it.
//
// Not in the subset: loops of two or more passes whose body can match empty (an optional pass that consumes nothing fails
// here and ends the loop there; a plain `?` is the same in both), and references or conditions on tokens that nesting or skipping can drop. Tokens are
// compared where both engines report them: one that closed before a lower-numbered one did is forgotten here.
#include "tests/support/differential.h"
#include "tests/support/nullable_patterns.h"
#include "tests/support/pattern_random.h"
#include "tests/support/pcre2_peer.h"

#include <gtest/gtest.h>

namespace corvane_tests {
namespace {

#ifdef CORVANE_HAVE_PCRE2

struct Search {
    std::string pattern;
    RE_Flags flags;
    std::u16string subject;
};

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

bool looksBehind(const std::string& pattern) {
    return contains(pattern, "(?<=") || contains(pattern, "(?<!");
}

/// Branch order and nearest start pick different branches of a look-behind body, and negative conditions keep
/// tokens only here, so tokens are left out for those.
bool tokensComparable(const std::string& pattern) {
    return !looksBehind(pattern) && !contains(pattern, "(?(?!");
}

/// PCRE2 gives a look-behind body one fixed length, which a conditional without a second branch does not have,
/// and takes a pattern for anchored because of a `^` in a group that is repeated zero times.
bool inSubset(const std::string& pattern) {
    return !(looksBehind(pattern) && contains(pattern, "(?(")) && !contains(pattern, "{0}");
}

bool tokensAgree(const Outcome& ours, const Outcome& theirs) {
    for (size_t index = 0; index < ours.tokens.size(); ++index) {
        const Token& token = ours.tokens[index];
        const Token& other = theirs.tokens.at(index);
        if (token.length != 0 && (token.start != other.start || token.length != other.length)) {
            return false;
        }
    }
    return true;
}

/// Empty when the engines agree or PCRE2 cannot answer.
std::string difference(const Search& search, size_t& compared) {
    const std::u16string pattern = widen(search.pattern);
    const Pcre2Pattern peer(pattern, search.flags);
    const bool asked = peer.valid() && inSubset(search.pattern);
    const std::optional<Outcome> theirs = asked ? peer.search(search.subject, 0) : std::nullopt;
    if (!theirs) {
        return "";
    }
    ++compared;
    const Outcome ours = Engine(pattern, search.flags).search(search.subject);
    const bool same = ours.matched == theirs->matched && ours.start == theirs->start &&
                      ours.length == theirs->length &&
                      (!tokensComparable(search.pattern) || tokensAgree(ours, *theirs));
    return same ? ""
                : search.pattern + "  on '" + printable(search.subject) + "'  flags " +
                      std::to_string(search.flags) + "  ours " + describe(ours) + "  PCRE2 " +
                      describe(*theirs);
}

std::uint64_t seedFor(std::uint64_t fallback) {
    return environmentNumber("CORVANE_TEST_SEED", fallback);
}

template <typename Source, typename MakePattern>
void compareWithPeer(Source source, std::uint64_t seed, unsigned long patterns, const MakePattern& makePattern) {
    const unsigned long rounds = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? patterns / 10 : patterns);
    size_t compared = 0;
    size_t differing = 0;
    for (unsigned long round = 0; round < rounds && differing < 10; ++round) {
        const std::string pattern = makePattern(source);
        for (const RE_Flags flags : {kPlain, kEmptyToo, RE_Flags{0x35}}) {
            const std::string found = difference({pattern, flags, source.subject(12)}, compared);
            EXPECT_EQ("", found) << "CORVANE_TEST_SEED=" << seed;
            differing += found.empty() ? 0U : 1U;
        }
    }
    EXPECT_GT(compared, rounds / 2);
}

TEST(Pcre2Peer, AgreesOnTheCommonSubset) {
    PatternTraits traits;
    traits.references = traits.words = traits.nullableLoops = false;
    compareWithPeer(PatternSource(seedFor(31337)), seedFor(31337), 12000, [&](PatternSource& source) { return source.pattern(traits); });
}

TEST(Pcre2Peer, AgreesOnReferencesToFlatGroupsThatAlwaysTakePart) {
    PatternTraits traits;
    traits.captures = traits.references = traits.conditions = traits.lookarounds = false;
    traits.words = traits.nullableLoops = traits.modes = false;
    compareWithPeer(PatternSource(seedFor(1729)), seedFor(1729), 3000, [&](PatternSource& source) {
        const auto piece = [&] { return "(?:" + source.pattern(traits) + ")"; };
        return "(" + source.pattern(traits) + ")" + piece() + "(" + source.pattern(traits) + ")\\1" +
               piece() + "\\2";
    });
}

// Plain choices around groups that may be empty, and possessive, lazy and nested ones.
TEST(Pcre2Peer, AgreesOnPlainChoicesOfNullableGroups) {
    static constexpr const char* choices[] = {"?", "??", "?+", "{0,1}", "{0,1}?", "{0,1}+", "{1}"};
    static constexpr const char* tests[] = {"^", "$"};
    const NullablePatterns patterns(seedFor(29), choices, 9, tests);
    compareWithPeer(patterns, seedFor(29), 12000, [](NullablePatterns& source) { return source.pattern(); });
}

struct KnownDifference {
    const char* reason;
    const char* pattern;
    const char* subject;
    RE_Flags flags;
    const char* ours;
    const char* theirs;
};

constexpr KnownDifference kKnown[] = {
    {"closing a token forgets the higher ones", "((a)b)\\2", "aba", kPlain, "null", "[0,3]"},
    {"a skipped token is present and empty", "(?:(a)|(b))\\1", "b", kPlain, "[0,1]", "null"},
    {"an optional empty pass fails and its body tries on", "(?:|a)*", "aa", kEmptyToo, "[0,2]", "[0,0]"},
    {"the same with bounds", "(?:|a){0,2}", "aa", kEmptyToo, "[0,2]", "[0,0]"},
    {"the same behind a required pass", "(?:|a){1,2}", "aa", kEmptyToo, "[0,1]", "[0,0]"},
    {"an empty token does not satisfy a condition", "(a*)(?(1)b|c)", "c", kPlain, "[0,1]", "null"},
    {"\\b is the backspace unit", "\\ba", "a", kPlain, "null", "[0,1]"},
    {"\\< is a word start", "\\<a", "a", kPlain, "[0,1]", "null"},
    {"look-behind bodies may be unbounded", "(?<=a+)b", "aab", kPlain, "[2,1]", "invalid"},
    {"further bars belong to the second branch", "(?(?=a)a|b|c)", "c", kPlain, "[0,1]", "invalid"},
};

std::string extent(const Outcome& outcome) {
    return describe({outcome.matched, outcome.start, outcome.length, {}});
}

TEST(Pcre2Peer, DiffersExactlyWhereItIsKnownTo) {
    for (const KnownDifference& known : kKnown) {
        const std::u16string pattern = widen(known.pattern);
        EXPECT_EQ(known.ours, extent(Engine(pattern, known.flags).search(widen(known.subject))))
            << known.reason;
        const Pcre2Pattern peer(pattern, known.flags);
        EXPECT_EQ(known.theirs,
                  peer.valid() ? extent(peer.search(widen(known.subject), 0).value()) : "invalid")
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
