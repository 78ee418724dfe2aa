// All small patterns over {a,b} on all small subjects, against the reference matcher.
//
// Random tests find what is frequent; this finds what is small. A fault of one operator, or of one within another,
// shows on a pattern of three or four parts and a subject of four units, and nothing of that size is left out.
#include "tests/support/differential.h"

#include <gtest/gtest.h>

namespace corvane_tests {
namespace {

/// A pattern text and whether a quantifier may follow it directly.
struct Piece {
    std::string text;
    bool closed;
};

std::string closedText(const Piece& piece) {
    return piece.closed ? piece.text : "(?:" + piece.text + ")";
}

constexpr const char* kQuantifiers[] = {"*", "*?", "+", "+?", "?", "??", "{2}", "{0,2}", "{1,2}?", "*+"};
constexpr const char* kGroups[] = {"(", "(?>", "(?=", "(?!", "(?<="};

/// Every pattern that one operator makes of a piece.
void addUnary(const Piece& piece, std::vector<Piece>& result) {
    for (const char* quantifier : kQuantifiers) {
        result.push_back({closedText(piece) + quantifier, false});
    }
    for (const char* group : kGroups) {
        result.push_back({group + piece.text + ")", true});
    }
    result.push_back({"(?:|" + piece.text + ")", true});
    result.push_back({"(?:" + piece.text + "|)", true});
}

/// A sequence and an alternation. The latter is grouped, as all that follows treats a piece as one item.
void addBinary(const Piece& left, const Piece& right, std::vector<Piece>& result) {
    result.push_back({left.text + right.text, false});
    result.push_back({"(?:" + left.text + "|" + right.text + ")", true});
}

/// `sizes[n]` holds every pattern made of n + 1 atoms and operators.
std::vector<std::vector<Piece>> enumerate(size_t largest) {
    std::vector<std::vector<Piece>> sizes = {{{"a", true}, {"b", true}, {".", true}, {"$", true}, {"\\1", true}}};
    for (size_t size = 1; size < largest; ++size) {
        std::vector<Piece> next;
        for (const Piece& piece : sizes[size - 1]) {
            addUnary(piece, next);
        }
        for (size_t left = 0; left + 2 <= size; ++left) {
            for (const Piece& first : sizes[left]) {
                for (const Piece& second : sizes[size - 2 - left]) {
                    addBinary(first, second, next);
                }
            }
        }
        sizes.push_back(std::move(next));
    }
    return sizes;
}

std::vector<std::u16string> subjectsUpTo(size_t length) {
    std::vector<std::u16string> subjects;
    forEachSubject(u"ab", length, [&](const std::u16string& subject) { subjects.push_back(subject); });
    return subjects;
}

/// Every pattern runs under one setting; the setting changes from pattern to pattern.
void compareAll(const std::vector<Piece>& pieces, size_t subjectLength, size_t stride, Comparison& comparison) {
    const std::vector<std::u16string> subjects = subjectsUpTo(subjectLength);
    for (size_t index = 0; index < pieces.size(); index += stride) {
        const std::u16string pattern = widen(pieces[index].text);
        for (const RE_Flags flags : {kPlain, kEmptyToo}) {
            const EngineConfig& config = allConfigs()[(index * 7 + flags) % allConfigs().size()];
            comparison.run(pattern, flags, config, subjects, false);
        }
    }
}

TEST(SmallPatterns, AgreeWithTheReferenceOnEverySmallSubject) {
    Comparison comparison;
    const std::vector<std::vector<Piece>> sizes = enumerate(4);
    for (const std::vector<Piece>& pieces : sizes) {
        compareAll(pieces, 4, sanitized() ? 7 : 1, comparison);
    }
    EXPECT_GT(comparison.compared(), 100000U);
    EXPECT_EQ("", comparison.report());
}

// Smaller patterns, from every offset, under each setting in place of one in turn.
TEST(SmallPatterns, AgreeUnderEverySettingOfTheOptions) {
    Comparison comparison;
    const std::vector<std::vector<Piece>> sizes = enumerate(3);
    const std::vector<std::u16string> subjects = subjectsUpTo(3);
    for (size_t index = 0; index < sizes[2].size(); index += sanitized() ? 13 : 2) {
        for (const EngineConfig& config : allConfigs()) {
            comparison.run(widen(sizes[2][index].text), kEmptyToo, config, subjects, true);
        }
    }
    EXPECT_GT(comparison.compared(), 10000U);
    EXPECT_EQ("", comparison.report());
}

// One operator more makes too many patterns to try them all; the stride is a prime, so no operator is left out.
TEST(LargerPatterns, AgreeWithTheReferenceOnASample) {
    Comparison comparison;
    compareAll(enumerate(5)[4], 4, sanitized() ? 2003 : 101, comparison);
    EXPECT_GT(comparison.compared(), 10000U);
    EXPECT_EQ("", comparison.report());
}

}  // namespace
}  // namespace corvane_tests
