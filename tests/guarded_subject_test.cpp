// Attacks on the parts that read many units at once: machine code, the automaton, vector scans, and replacing in place.
//
// Subjects lie between two pages that may not be read, directly after the first or directly before the second, so that one
// unit read outside ends the program on any machine, with or without sanitizers. The oracle for what is found is the plain
// graph on a copy.
#include "tests/support/differential.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace corvane_tests {
namespace {

/// A text at the begin or at the end of some pages with guards on both sides.
class GuardedText {
public:
    GuardedText() : memory(::mmap(nullptr, 4 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
        if (memory == MAP_FAILED || ::mprotect(memory, kPage, PROT_NONE) != 0 ||
            ::mprotect(static_cast<char*>(memory) + 3 * kPage, kPage, PROT_NONE) != 0) {
            throw std::bad_alloc();
        }
    }
    ~GuardedText() { ::munmap(memory, 4 * kPage); }
    GuardedText(const GuardedText&) = delete;
    GuardedText& operator=(const GuardedText&) = delete;

    std::u16string_view place(std::u16string_view text, bool atEnd) {
        char* const begin = static_cast<char*>(memory) + kPage;
        char* const at = atEnd ? begin + 2 * kPage - 2 * text.size() : begin;
        std::memcpy(at, text.data(), 2 * text.size());
        return {reinterpret_cast<const char16_t*>(at), text.size()};
    }

private:
    static constexpr size_t kPage = 65'536;  // a multiple of the pages of all machines
    void* memory;
};

/// The text is so many copies of the pump as fit, before the suffix.
struct SubjectAttack {
    const char* what;
    const char16_t* pattern;
    RE_Flags flags;
    const char16_t* pump;
    const char16_t* suffix;
};

constexpr RE_Flags kCase = kPlain | 1;

// clang-format off
constexpr SubjectAttack kAttacks[] = {
    {"a literal that the end cuts off", u"abcdefghijklmnopqrstuvwxyz", kPlain, u"z", u"abcdefghijklmnopqrstuvwxy"},
    {"a short literal at the end", u"ab", kPlain, u"b", u"a"},
    {"a folded literal at the end", u"holmes", kCase, u"H", u"HOLME"},
    {"a folded unit of three forms", u"k\\x{DF}", kCase, u"\u212A", u"\u1E9E"},
    {"literals of different lengths", u"(?:abc|abcdefgh|xyzxyzxyz)", kPlain, u"abcdefg", u"xyzxyzxy"},
    {"literals of one beginning", u"(?:aaaaaaaaaaaaaaaa|aaaaaaaab|aaaac)", kPlain, u"a", u""},
    {"folded literals", u"(?:one|two|three|four)x", kCase, u"THREE", u"thre"},
    {"many literals", u"(?:zero|one|two|three|four|five|six|seven|eight|nine|ten)!", kPlain, u"eleven", u"nin"},
    {"a run to the end", u"a+", kPlain, u"a", u""},
    {"a run and a unit after the end", u"a+b", kPlain, u"a", u""},
    {"a run of a set", u"[^x]+x", kPlain, u"\u4E00y", u""},
    {"a run of exactly so many", u"a{31}b", kPlain, u"a", u""},
    {"a run of at most so many", u"a{2,64}[bc]", kPlain, u"a", u""},
    {"a lazy run", u"a*?b", kPlain, u"a", u""},
    {"a lazy run of a set", u"\\w+?[!?]", kPlain, u"ab", u"!"},
    {"a possessive run", u"[a-c]++d", kPlain, u"abc", u""},
    {"a run before a literal", u"\\w+ing", kPlain, u"in", u"in"},
    {"a token around a run", u"(\\d+)-(\\d+)", kPlain, u"12-", u"3"},
    {"a reference at the end", u"(a+)b\\1", kPlain, u"a", u"baaa"},
    {"a reference longer than the rest", u"(.{9})\\1", kPlain, u"abcdefghi", u"abcdefgh"},
    {"a folded reference", u"(\\w{5})\\1", kCase, u"aBcDe", u"abcd"},
    {"a reference by name", u"(?<n>a|b)\\k<n>x", kPlain, u"ab", u"aa"},
    {"a look-behind at the begin", u"(?<=abc)d", kPlain, u"d", u"abc"},
    {"a look-behind of any length", u"(?<=a.*)b", kPlain, u"xb", u"b"},
    {"a negative look-behind", u"(?<!a)b", kPlain, u"b", u"ab"},
    {"a lookahead past the end", u"a(?=bcd)", kPlain, u"a", u"bc"},
    {"a negative lookahead", u"a(?!aaa)", kPlain, u"a", u""},
    {"a word's edge at both ends", u"\\<\\w+\\>", kPlain, u"ab ", u"c"},
    {"a word's end", u"a\\>", kPlain, u"a", u""},
    {"lines", u"^a*$", kPlain | 4, u"aa\n", u"a"},
    {"a line's end without a line feed", u"b$", kPlain | 4, u"b\n", u"b"},
    {"the text's end", u"[ab]+$", kPlain, u"ab", u"c"},
    {"any unit of a line", u".+;", 0, u"\na", u""},
    {"zeros", u"\\0+a", kPlain, u"\uFFFF\u0001", u""},
    {"halves of pairs", u"[\\x{D800}-\\x{DFFF}]+x", kPlain, u"\xD83D", u"\xDE00"},
    {"a pair that is cut", u"\\x{1F600}", kPlain, u"\xD83D\xDE01", u"\xD83D"},
    {"the last unit of all", u"[\\x{FFFE}\\x{FFFF}]x?", kPlain, u"\uFFFD", u"\uFFFF"},
    {"the highest set", u"[^\\x{FFFF}]+\\x{FFFF}", kPlain, u"\uFFFE", u""},
    {"a range over the blocks of a table", u"[\\x{3F}-\\x{41}\\x{7FFF}-\\x{8001}]{3}", kPlain, u"@\u7FFF", u"\u8000"},
    {"a loop that doubles", u"(?:a|ab)(?:c|bcd)*d", kPlain, u"abcd", u"abc"},
    {"nested loops", u"(?:(?:ab*)+c)+d", kPlain, u"abbc", u"ab"},
    {"counted groups", u"(?:ab?){7,9}c", kPlain, u"ab", u"a"},
    {"an atomic group", u"(?>a+b?)+c", kPlain, u"ab", u"a"},
    {"a condition", u"(a)?(?(1)b|c)d", kPlain, u"abcd", u"ab"},
    {"empty matches", u"x*", kEmptyToo, u"ax", u""},
    {"alternatives by their first unit", u"(?:a.c|b.d|c.e|.f)g", kPlain, u"axcbyd", u"bz"},
    {"prefixes of several lengths", u"(?:ab[cd]ef|a[bc]d|[bc]de)!", kPlain, u"abcdeabd", u"abce"},
    {"a literal far behind the start", u"[a-z]+[0-9]{2}END", kPlain, u"abc12EN", u"END"},
};
// clang-format on

std::u16string subjectOf(const SubjectAttack& attack, size_t units) {
    const std::u16string suffix = attack.suffix;
    std::u16string text;
    while (text.size() + suffix.size() < units) {
        text += attack.pump;
    }
    return text + suffix;
}

// Each length up to a few vectors, so that every tail of a block of units occurs; from the begin and from within.
TEST(GuardedSubjects, AreReadFromTheirBeginToTheirEndAndNoFurther) {
    GuardedText guarded;
    for (const SubjectAttack& attack : kAttacks) {
        const Engine plain(attack.pattern, attack.flags, kPlainGraph);
        const EngineConfig kinds[] = {{},
                                      {true, true, true, 1024, false, true},
                                      {true, true, true, 1024, false, false, true},
                                      {true, true, true, 0, false, true, true}};
        for (const EngineConfig& config : kinds) {
            const Engine engine(attack.pattern, attack.flags, config);
            for (size_t units = 0; units <= 140; units += units < 70 ? 1 : 7) {
                const std::u16string text = subjectOf(attack, units);
                for (const bool atEnd : {true, false}) {
                    const std::u16string_view subject = guarded.place(text, atEnd);
                    for (const size_t offset : {size_t{0}, text.size() / 2, text.size()}) {
                        ASSERT_EQ(describe(plain.search(text, offset)), describe(engine.search(subject, offset)))
                            << attack.what << ", " << text.size() << " units from " << offset << " under " << config;
                    }
                }
            }
        }
    }
}

// The buffer is as large as the text to the unit, and the result longer, shorter or of the same length. It may move.
TEST(GuardedSubjects, AreReplacedInPlaceWithoutAUnitMore) {
    for (const SubjectAttack& attack : kAttacks) {
        const RE_Tree tree(attack.pattern, std::char_traits<char16_t>::length(attack.pattern), attack.flags, nullptr);
        for (const std::u16string_view replacement : {u"", u"x", u"<$&$&$&>", u"$`$'", u"$1"}) {
            const RE_Replace replace(replacement.data(), replacement.size());
            for (const size_t units : {size_t{0}, size_t{1}, size_t{17}, size_t{64}}) {
                const std::u16string text = subjectOf(attack, units);
                for (const bool adjustCase : {false, true}) {
                    size_t length = text.size();
                    size_t capacity = std::max<size_t>(length, 1);
                    auto* buffer = static_cast<char16_t*>(utMalloc(capacity * sizeof(char16_t)));
                    std::copy(text.begin(), text.end(), buffer);
                    buffer = replace.replace(buffer, &length, &capacity, &tree, adjustCase, 0);
                    EXPECT_LE(length, capacity);
                    EXPECT_EQ(replace.replace(text, tree, adjustCase, 0), std::u16string(buffer, length))
                        << attack.what;
                    utFree(buffer);
                }
            }
        }
    }
}

// What is quoted is found as it is, and a wildcard of a text finds the text, whatever that is.
TEST(GuardedSubjects, AreQuotedAndTranslated) {
    GuardedText guarded;
    for (const SubjectAttack& attack : kAttacks) {
        for (const size_t units : {size_t{1}, size_t{16}, size_t{65}}) {
            const std::u16string text = subjectOf(attack, units);
            const std::u16string_view subject = guarded.place(text, true);
            EXPECT_TRUE(Engine(RE_Translate::escape(subject)).search(text).matched || text.empty()) << attack.what;
            EXPECT_TRUE(Engine(RE_Translate::translateWildcard(subject)).search(text).matched || text.empty())
                << attack.what;
            EXPECT_EQ(text.size(), RE_Translate::makeWhitespaceSpaces(subject).size());
        }
    }
}

}  // namespace
}  // namespace corvane_tests
