// The trie of literals against comparing them one by one.
//
// Literals are drawn over few letters, so that many of them begin alike, and over letters whose case folds across
// blocks of Unicode. The order of the literals decides, not their length: that is what a trie forgets most easily.
#include "regexp/seek/literal_trie.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace corvane_tests {
namespace {

using Texts = std::vector<std::u16string>;

char16_t folded(char16_t unit, bool folds) {
    return folds ? RE_Case_Table::get().lower(unit) : unit;
}

/// The definition: the literal's units, compared one by one with the text's.
bool stands(const RE_Literal_Trie& trie, size_t literal, std::u16string_view text) {
    const std::u16string_view own = trie.text(literal);
    return own.size() <= text.size() && std::equal(own.begin(), own.end(), text.begin(), [&](char16_t a, char16_t b) {
               return a == folded(b, trie.ignoresCase());
           });
}

/// From each literal on: which is the first that the subject begins with, and whether a later one does too.
void compare(const RE_Literal_Trie& trie, std::u16string_view subject) {
    for (size_t from = 0; from < trie.count(); from += 1 + from / 8) {
        std::vector<size_t> found;
        for (size_t literal = from; literal < trie.count(); ++literal) {
            if (stands(trie, literal, subject)) {
                found.push_back(literal);
            }
        }
        const auto answer =
            trie.find(subject.data(), subject.data() + subject.size(), static_cast<std::uint32_t>(from));
        ASSERT_EQ(!found.empty(), answer.length != 0);
        ASSERT_TRUE(found.empty() || found[0] == answer.literal);
        ASSERT_TRUE(found.empty() || trie.text(found[0]).size() == answer.length);
        ASSERT_EQ(found.size() > 1, answer.hasLater);
    }
}

TEST(LiteralTrie, FindsTheLiteralsAtAPosition) {
    constexpr std::u16string_view letters[] = {u"a", u"ab", u"abcdefghijklmnop", u"kK\u212A\u0430\u0410\u4E00b"};
    std::mt19937 random(5);
    const auto below = [&](size_t limit) { return random() % limit; };
    for (int round = 0; round < 400; ++round) {
        const std::u16string_view alphabet = letters[below(4)];
        const bool folds = below(2) == 0;
        const auto word = [&](size_t shortest, size_t longest, bool lower) {
            std::u16string text;
            for (size_t left = shortest + below(longest - shortest + 1); left > 0; --left) {
                text += folded(alphabet[below(alphabet.size())], lower);
            }
            return text;
        };
        Texts texts;
        for (size_t left = 1 + below(round % 20 == 0 ? 2000 : 12); left > 0; --left) {
            texts.push_back(word(1, 1 + below(9), folds));
        }
        Texts distinct;
        std::ranges::copy_if(texts, std::back_inserter(distinct),
                             [&](const auto& text) { return std::ranges::count(distinct, text) == 0; });
        const RE_Literal_Trie trie({texts.begin(), texts.end()}, folds);
        ASSERT_EQ(distinct.size(), trie.count());
        ASSERT_EQ(std::ranges::min(distinct, {}, &std::u16string::size).size(), trie.shortest());
        ASSERT_EQ(std::ranges::max(distinct, {}, &std::u16string::size).size(), trie.longest());
        for (size_t literal = 0; literal < distinct.size(); ++literal) {
            ASSERT_EQ(distinct[literal], trie.text(literal));
        }
        RE_Unit_Set first;
        trie.forEachFirstUnit([&first](char16_t unit) { first.add(unit); });
        for (int subjects = 0; subjects < 10; ++subjects) {
            const std::u16string subject =
                below(2) == 0 ? word(0, 12, false) : texts[below(texts.size())] + word(0, 2, false);
            ASSERT_NO_FATAL_FAILURE(compare(trie, subject));
            ASSERT_TRUE(subject.empty() ||
                        first.contains(subject[0]) == std::ranges::any_of(texts, [&](const auto& text) {
                            return text[0] == folded(subject[0], folds);
                        }));
        }
    }
}

// 800 literals, each the beginning of the one before, all on one path of the trie.
TEST(LiteralTrie, HoldsPrefixesOfPrefixes) {
    Texts texts;
    for (size_t length = 800; length > 0; --length) {
        texts.emplace_back(length, u'a');
    }
    const RE_Literal_Trie trie({texts.begin(), texts.end()}, false);
    EXPECT_EQ(799u, trie.find(texts[0].data(), texts[0].data() + 1, 0).literal);
    EXPECT_EQ(0u, trie.find(texts[0].data(), texts[0].data() + 800, 0).literal);
    EXPECT_EQ(400u, trie.find(texts[0].data(), texts[0].data() + 800, 400).literal);
}

}  // namespace
}  // namespace corvane_tests
