// Escapes that hold a number in braces: read in a pattern, in a set and in a replacement as a plain model reads them,
// with one warning where they are malformed.
//
// The model is `numberIn`: digits between braces are a number, anything else is the letter and its braces as text. All
// texts of up to four units over an alphabet of digits, non-digits and braces are tried.
#include "tests/support/engine_run.h"
#include "tests/support/text.h"
#include "regexp/options/compile_options.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace corvane_tests {
namespace {

/// The number that the text in braces is, if it is one.
std::optional<char16_t> numberIn(std::u16string_view braces, int base) {
    if (!braces.starts_with(u'{') || !braces.ends_with(u'}') || braces.size() < 3) {
        return std::nullopt;
    }
    const std::string digits(braces.begin() + 1, braces.end() - 1);
    const char* const known = base == 16 ? "09a" : "0";  // of the alphabet below
    return digits.find_first_not_of(known) == digits.npos
               ? std::optional(static_cast<char16_t>(std::stoul(digits, nullptr, base)))
               : std::nullopt;
}

/// Compares all three readers on one escape. A warning points at the letter: unit 1 of the escape, unit 3 in the set.
void expectRead(char16_t letter, const std::u16string& braces) {
    const std::u16string escape = u"\\" + (letter + braces);
    const std::optional<char16_t> number = numberIn(braces, letter == u'x' ? 16 : 8);
    const std::u16string meant = number ? std::u16string(1, *number) : letter + braces;
    const auto warnings = [&](size_t position) {
        return number ? std::vector<Warning>{} : std::vector<Warning>{{letter == u'x' ? 3u : 2u, position}};
    };
    // Without and with free spacing, which must not change what braces hold.
    for (const RE_Flags flags : {RE_Flags{0x22}, RE_Flags{0x2A}}) {
        const Engine pattern(escape, flags);
        ASSERT_EQ(warnings(1), pattern.warnings()) << printable(escape);
        ASSERT_EQ("[0," + std::to_string(meant.size()) + "]", describe(pattern.search(meant))) << printable(escape);
        const Engine set(u"^[" + escape + u"]+$", flags);
        ASSERT_EQ(warnings(3), set.warnings()) << printable(escape);
        ASSERT_TRUE(set.search(meant).matched && !set.search(u"g" + meant + u"-").matched) << printable(escape);
    }
    const Corvane::regexp::CompileOptions options;
    RecordingContext host(options);
    const RE_Replace replacement(escape.data(), escape.size(), kPlain, &host);
    ASSERT_EQ(warnings(1), host.warnings()) << printable(escape);
    ASSERT_EQ(printable(meant), printable(replacement.replace(u"-", RE_Tree(u"-", false), false, 0)));
}

// All braces that close at most once, at the end of the text: what follows the first closing one is no part of the
// escape.
TEST(BracedEscapes, AreANumberOrTheirLetterAndTheirBracesAsText) {
    forEachSubject(u"{}09a,~", 4, [](const std::u16string& rest) {
        if (rest.find(u'}') >= rest.size() - 1) {
            expectRead(u'x', u"{" + rest);
            expectRead(u'o', u"{" + rest);
        }
    });
}

}  // namespace
}  // namespace corvane_tests
