// Texts in other encodings as subjects. The oracle is the search of the UTF-16 that ICU makes of them, and a table of places
// that is made by walking with ICU, character by character.
#include "host/interrupt.h"
#include "regexp/regexp.h"
#include "regexp/text/text_search.h"
#include "tests/support/differential.h"

#include <gtest/gtest.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <cstring>
#include <map>
#include <memory>
#include <stop_token>

namespace corvane_tests {
namespace {

/// A text, what it is in UTF-16, and where each unit lies: at the start of the character that holds it, and at the end of
/// what precedes it.
struct Sample {
    RE_Encoding encoding;
    std::string bytes;
    std::u16string units;
    std::vector<RE_Text_Place> down, up;

    void addCharacter(UChar32 character, size_t pieces, RE_Text_Place& at) {
        const size_t size = character < 0x10000 ? 1 : 2;
        RE_Text_Place after{at.unit + size, at.piece + pieces, at.character + 1};
        for (size_t i = 0; i < size; ++i) {
            down.push_back(at);
            up.push_back(i == 0 ? at : after);
            units += size == 1 ? static_cast<char16_t>(character)
                               : static_cast<char16_t>(i == 0 ? U16_LEAD(character) : U16_TRAIL(character));
        }
        at = after;
    }
    void finish(const RE_Text_Place& end) {
        down.push_back(end);
        up.push_back(end);
    }
};

Sample sampleOfUtf8(const std::string& bytes) {
    Sample sample{RE_Encoding::utf8, bytes, {}, {}, {}};
    RE_Text_Place at;
    const auto* const p = reinterpret_cast<const uint8_t*>(bytes.data());
    for (int32_t i = 0; i < static_cast<int32_t>(bytes.size());) {
        const int32_t start = i;
        UChar32 character = 0;
        U8_NEXT_OR_FFFD(p, i, static_cast<int32_t>(bytes.size()), character);
        sample.addCharacter(character, static_cast<size_t>(i - start), at);
    }
    sample.finish(at);
    return sample;
}

template <class Piece>
Sample sampleOfPieces(RE_Encoding encoding, const std::basic_string<Piece>& text) {
    Sample sample{
        encoding, std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(Piece)), {}, {}, {}};
    RE_Text_Place at;
    for (size_t i = 0; i < text.size();) {
        UChar32 character = 0;
        size_t pieces = 1;
        if constexpr (sizeof(Piece) == 2) {
            pieces = U16_IS_LEAD(text[i]) && i + 1 < text.size() && U16_IS_TRAIL(text[i + 1]) ? 2 : 1;
            character = pieces == 2 ? U16_GET_SUPPLEMENTARY(text[i], text[i + 1]) : text[i];
        } else if constexpr (sizeof(Piece) == 4) {
            character = text[i] > 0x10FFFF || U_IS_SURROGATE(text[i]) ? 0xFFFD : static_cast<UChar32>(text[i]);
        } else {
            character = static_cast<unsigned char>(text[i]);
        }
        sample.addCharacter(character, pieces, at);
        i += pieces;
    }
    sample.finish(at);
    return sample;
}

/// Words and separators, ASCII or not, and every so often something broken.
Sample drawSample(PatternSource& source, size_t words) {
    static const std::string kWords[] = {"abc",
                                         "a",
                                         "b",
                                         " ",
                                         "\n",
                                         "aab ",
                                         "\xC3\xA4"
                                         "b",
                                         "\xD0\x96"
                                         "a",
                                         "\xE5\xA4\xA9",
                                         "\xF0\x9F\x98\x80",
                                         "abcabcabc ",
                                         "\xF0\x9F\x98\x80\xF0\x9F\x98\x81"};
    static const std::string kBroken[] = {"\xFF", "\xC3", "\xE2\x82", "\xED\xA0\x80", "\xF0\x9F\x98"};
    const RE_Encoding encoding = static_cast<RE_Encoding>(source.below(4));
    const size_t kinds = source.oneIn(3) ? 6 : std::size(kWords);  // ASCII only
    std::string utf8;
    for (size_t word = 0; word < words; ++word) {
        utf8 += kinds > 6 && source.oneIn(8) ? kBroken[source.below(std::size(kBroken))] : kWords[source.below(kinds)];
    }
    switch (encoding) {
        case RE_Encoding::latin1:
            return sampleOfPieces<char>(encoding, utf8);
        case RE_Encoding::utf8:
            return sampleOfUtf8(utf8);
        case RE_Encoding::utf16: {
            std::u16string units = sampleOfUtf8(utf8).units;
            for (size_t lone = source.below(3); lone > 0 && kinds > 6; --lone) {
                units.insert(source.below(units.size() + 1), 1, static_cast<char16_t>(0xD800 + source.below(0x800)));
            }
            return sampleOfPieces(encoding, units);
        }
        case RE_Encoding::utf32:
            break;
    }
    std::u32string wide;
    const std::u16string units = sampleOfUtf8(utf8).units;
    for (size_t i = 0; i < units.size();) {
        UChar32 character = 0;
        U16_NEXT(units.data(), i, units.size(), character);
        wide += static_cast<char32_t>(kinds > 6 && source.oneIn(30) ? 0x110000 + character : character);
    }
    return sampleOfPieces(encoding, wide);
}

size_t counted(const RE_Text_Place& place, RE_Offsets offsets, RE_Encoding encoding) {
    return offsets == RE_Offsets::units   ? place.unit
           : offsets == RE_Offsets::bytes ? place.piece * reUnitBytes(encoding)
                                          : place.character;
}

RE_Extent extentIn(const Sample& sample, size_t start, size_t length, RE_Offsets offsets) {
    if (offsets == RE_Offsets::units) {
        return {start, length};
    }
    // In UTF-16 every unit has bytes of its own.
    if (offsets == RE_Offsets::bytes && sample.encoding == RE_Encoding::utf16) {
        return {2 * start, 2 * length};
    }
    const size_t from = counted(sample.down[start], offsets, sample.encoding);
    const size_t to = length == 0 ? from : counted(sample.up[start + length], offsets, sample.encoding);
    return {from, to - from};
}

RE_Offsets drawOffsets(PatternSource& source) {
    return static_cast<RE_Offsets>(source.below(3));
}

std::unique_ptr<Engine> drawEngine(PatternSource& source) {
    static const char16_t* const kTyped[] = {u"\\w+",       u"[^ \\n]+$", u"a+b",          u".",
                                             u"(a|b)c|\\s", u"(?-s)^.*$", u"\\x{1F600}|a", u"",
                                             u"(?<=a)b",    u"(\\w)\\1",  u"[\\x{D83D}]",  u"abc"};
    if (source.oneIn(2)) {
        return std::make_unique<Engine>(
            kTyped[source.below(std::size(kTyped))],
            static_cast<RE_Flags>(source.oneIn(2) ? kPlain : kEmptyToo | RE_FLAG_LINE_ANCHORS));
    }
    const DrawnPattern drawn = source.draw(kDynamics);
    return std::make_unique<Engine>(drawn.text, drawn.flags, allConfigs()[source.below(allConfigs().size())]);
}

/// Empty where the walk agrees with that over the units. A walk that takes too long agrees.
std::string differenceOnAWalk(const RE_Tree& tree, const Sample& sample, RE_Text& text, RE_Offsets offsets,
                              size_t& matches) {
    const RE_Search_Limits limits{.steps = 300'000};
    RE_Text_Matches walk(tree, text, offsets, 0, limits);
    RE_Match_Range range = tree.find_all(sample.units, 0, limits);
    auto expected = range.begin();
    while (const RE_Text_Match* const match = walk.next()) {
        if (expected == range.end()) {
            return range.report().isComplete() ? "a match too many" : "";
        }
        const auto differs = [&](std::optional<RE_Extent> got, size_t start, size_t length) {
            return !(got == extentIn(sample, start, length, offsets));
        };
        if (differs(match->extent(), expected->matchStart, expected->matchLength)) {
            return "the match at unit " + std::to_string(expected->matchStart);
        }
        for (size_t i = 0; i < expected->tokens->slots.size(); ++i) {
            const RE_TokenInfo& token = expected->tokens->slots[i];
            if (match->tookPart(i) != expected->tookPart(i) ||
                (expected->tookPart(i) && differs(match->token(i), token.start, token.length))) {
                return "token " + std::to_string(i) + " at unit " + std::to_string(expected->matchStart);
            }
        }
        ++matches;
        ++expected;
    }
    const bool complete = range.report().isComplete() && walk.report().isComplete();
    return complete && !(expected == range.end()) ? "a match is missing" : "";
}

TEST(Text, HasTheMatchesOfItsUtf16AtItsOwnPlaces) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 3));
    RE_Text text;
    size_t matches = 0;
    for (unsigned long round = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 1000 : 10'000); round > 0;
         --round) {
        const bool isLong = source.oneIn(100);
        const Sample sample = drawSample(source, isLong ? 20'000 + source.below(20'000) : source.below(60));
        const auto engine = drawEngine(source);
        // In a block of its own, at any address.
        const size_t shift = source.below(2);
        const auto block = std::make_unique<char[]>(sample.bytes.size() + shift);
        std::memcpy(block.get() + shift, sample.bytes.data(), sample.bytes.size());
        text.use(sample.encoding, block.get() + shift, sample.bytes.size());
        const RE_Offsets offsets = drawOffsets(source);
        ASSERT_EQ("", differenceOnAWalk(engine->tree(), sample, text, offsets, matches))
            << static_cast<int>(sample.encoding) << ' ' << ::testing::PrintToString(sample.bytes.substr(0, 400)) << "\n"
            << engine->tree().graph();
    }
    EXPECT_GT(matches, 10'000u / (sanitized() ? 10 : 1));
}

TEST(Text, TellsPlacesInAnyOrder) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 4));
    RE_Text text;
    for (int round = 0; round < (sanitized() ? 20 : 200); ++round) {
        const Sample sample = drawSample(source, round % 5 == 0 ? 9000 : source.below(300));
        text.use(sample.encoding, sample.bytes.data(), sample.bytes.size());
        for (int i = 0; i < 300; ++i) {
            const RE_Offsets offsets = drawOffsets(source);
            const size_t unit = source.below(sample.units.size() + 1);
            const RE_Text_Place place = sample.down[unit];
            if (offsets == RE_Offsets::units ||
                (sample.encoding == RE_Encoding::utf16 && offsets == RE_Offsets::bytes)) {
                continue;
            }
            const size_t offset = counted(place, offsets, sample.encoding);
            ASSERT_EQ(place.unit, text.unitOf(offset, offsets)) << unit;
            text.convert(RE_Text::all);
            ASSERT_EQ(offset, text.offsetOf(unit, offsets)) << unit;
            ASSERT_EQ(counted(sample.up[unit], offsets, sample.encoding), text.offsetAfter(unit, offsets)) << unit;
        }
        ASSERT_EQ(sample.units, text.known());
    }
}

// The first match of a text of some megabytes, which is said in units that were converted, not in time.
TEST(Text, IsConvertedNoFurtherThanThePatternSees) {
    std::string bytes;
    while (bytes.size() < 8'000'000) {
        bytes +=
            "ein Satz \xC3\xBC"
            "ber W\xC3\xB6rter\n";
    }
    struct {
        std::u16string_view pattern;
        bool isLazy;
    } const cases[] = {{u"\\w+", true},     {u"(?-s)S.*$", true}, {u"W.r", true},         {u"(\\w+) \\1|Satz", true},
                       {u"S[^\\n]*", true}, {u"S.*", false},      {u"[^q]+q|Satz", false}};
    RE_Text text;
    for (const auto& row : cases) {
        const Engine engine(row.pattern, kPlain | RE_FLAG_LINE_ANCHORS);
        text.useUtf8(bytes);
        ASSERT_TRUE(reFindFirst(engine.tree(), text)) << printable(row.pattern);
        if (row.isLazy) {
            EXPECT_LT(text.known().size(), 70'000u) << printable(row.pattern);
        } else {
            EXPECT_GT(text.known().size(), 1'000'000u) << printable(row.pattern);
        }
    }
}

TEST(Text, OfAsciiKeepsOnePlace) {
    const std::string bytes(3'000'000, 'x');
    RE_Text text;
    text.useUtf8(bytes);
    text.convert(RE_Text::all);
    EXPECT_EQ(2'000'000u, text.offsetOf(2'000'000, RE_Offsets::bytes));
    EXPECT_LT(text.memoryUse(), 2 * bytes.size() + 100'000) << "two bytes a unit and next to nothing besides";
}

TEST(Text, StopsConvertingWhenASearchWould) {
    const std::string bytes(4'000'000, 'x');
    const Engine never(u"x.*y");
    RE_Text text;
    const auto outcomeWith = [&](const RE_Search_Limits& limits) {
        text.useUtf8(bytes);
        RE_Text_Search search(never.tree(), text, limits);
        EXPECT_EQ(nullptr, search.find(0));
        EXPECT_EQ(nullptr, search.find(0)) << "it is over";
        return search.report();
    };
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(RE_Search_Outcome::cancelled, outcomeWith({.stop = stop.get_token()}).outcome);
    EXPECT_EQ(RE_Search_Outcome::deadlinePassed,
              outcomeWith({.deadline = std::chrono::steady_clock::now() - std::chrono::seconds(1)}).outcome);
    EXPECT_EQ(0u, text.known().size());
    RE_Text fresh;
    fresh.useUtf8(bytes);
    RE_Text_Search small(never.tree(), fresh, {.bytes = 1'000'000});
    EXPECT_EQ(nullptr, small.find(0));
    EXPECT_EQ(RE_Search_Outcome::memoryFull, small.report().outcome);
    EXPECT_LE(fresh.memoryUse(), 1'000'000u);
    EXPECT_LE(small.report().peakBytes, 1'000'000u);
    EXPECT_EQ(RE_Search_Outcome::stepsSpent, outcomeWith({.steps = 10}).outcome);
    EXPECT_EQ(RE_Search_Outcome::noMatch, outcomeWith({.bytes = 40'000'000}).outcome);
}

TEST(Text, IsInterruptedByTheHost) {
    const std::string bytes(400'000, 'x');
    Interruptible allows;
    const RE_Tree tree(u"x.*y", 4, kPlain, &allows);
    RE_Text text;
    text.useUtf8(bytes);
    utInterruptState::SetInterruptPending(true);
    EXPECT_EQ(RE_Search_Outcome::interrupted, text.convert(RE_Text::all, {}, true));
    EXPECT_EQ(RE_Search_Outcome::noMatch, text.convert(1, {}, false));
    {
        RE_Text_Search search(tree, text);
        EXPECT_EQ(nullptr, search.find(0));
        EXPECT_EQ(RE_Search_Outcome::noMatch, search.report().outcome) << "a request from before is for someone else";
    }
    EXPECT_TRUE(utInterruptState::IsInterruptPending());
    utInterruptState::SetInterruptPending(false);
}

TEST(Text, ReplacesAndLeavesTheRestAsItIs) {
    const RE_Tree tree(u"(b|\u00E4)", false);
    const RE_Replace replacement(u"<$1$1\u20AC>");
    RE_Text text;
    text.useUtf8(
        "a\xFF"
        "b\xC3\xA4\xE2\x82"
        "c");
    size_t matches = 0;
    RE_Search_Report report;
    EXPECT_EQ(
        "a\xFF<bb\xE2\x82\xAC><\xC3\xA4\xC3\xA4\xE2\x82\xAC>\xE2\x82"
        "c",
        reReplaceAll(tree, text, replacement, {}, &report, &matches));
    EXPECT_EQ(2u, matches);
    EXPECT_EQ(RE_Search_Outcome::matched, report.outcome);
    EXPECT_EQ(
        "a\xFF"
        "b<\xC3\xA4\xC3\xA4\xE2\x82\xAC>\xE2\x82"
        "c",
        reReplaceAll(tree, text, replacement, {.which = 2}));
    text.useLatin1("ab\xE4");
    EXPECT_EQ("a<bb?><\xE4\xE4?>", reReplaceAll(tree, text, replacement));
    text.useUtf32(U"b\U0001F600");
    const std::u32string wide = U"<bb\u20AC>\U0001F600";
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(wide.data()), 4 * wide.size()),
              reReplaceAll(tree, text, replacement));
}

// What is made of the matches takes memory and time, too.
TEST(Text, EndsReplacingAndSplittingByLimits) {
    const RE_Tree tree(u"a", false);
    const std::string subject(1000, 'a');
    RE_Text text;
    text.useUtf8(subject);
    const auto write = [](const RE_Text_Match&, std::string& out) { out.append(100'000, 'b'); };
    RE_Text_Order order;
    RE_Search_Report report;
    order.limits.bytes = 1'000'000;
    EXPECT_GT(2'000'000u, reReplaceEach(tree, text, write, order, &report, nullptr).size());
    EXPECT_EQ(RE_Search_Outcome::memoryFull, report.outcome);

    std::stop_source source;
    order.limits = {.stop = source.get_token()};
    const auto stop = [&](const RE_Text_Match& match, std::string& out) {
        write(match, out);
        source.request_stop();
    };
    EXPECT_GT(2'000'000u, reReplaceEach(tree, text, stop, order, &report, nullptr).size());
    EXPECT_EQ(RE_Search_Outcome::cancelled, report.outcome);

    EXPECT_GT(500u, reSplit(tree, text, RE_Offsets::bytes, {.bytes = 4000}, &report).size());
    EXPECT_EQ(RE_Search_Outcome::memoryFull, report.outcome);
}

TEST(Text, ReplacesAndSplitsAsItsUtf16Does) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 8));
    RE_Text text;
    for (int round = 0; round < (sanitized() ? 100 : 1000); ++round) {
        const Sample sample = drawSample(source, source.below(30));
        const auto engine = drawEngine(source);
        text.use(sample.encoding, sample.bytes.data(), sample.bytes.size());
        const auto parts = engine->tree().split(sample.units);
        const auto extents = reSplit(engine->tree(), text, RE_Offsets::units);
        ASSERT_EQ(parts.size(), extents.size());
        for (size_t i = 0; i < parts.size(); ++i) {
            ASSERT_EQ((RE_Extent{static_cast<size_t>(parts[i].data() - sample.units.data()), parts[i].size()}),
                      extents[i]);
        }
        // Matches may halve a pair in a text of units, where bytes can not.
        if (sample.encoding == RE_Encoding::utf16) {
            const RE_Replace replacement(u"[$&]");
            const std::u16string replaced = replacement.replace(sample.units, engine->tree(), false, 0);
            ASSERT_EQ(std::string(reinterpret_cast<const char*>(replaced.data()), 2 * replaced.size()),
                      reReplaceAll(engine->tree(), text, replacement));
        }
    }
}

TEST(Text, RefusesHalfAUnit) {
    RE_Text text;
    EXPECT_THROW(text.use(RE_Encoding::utf32, "abc", 3), std::invalid_argument);
    text.use(RE_Encoding::utf8, nullptr, 0);
    EXPECT_TRUE(text.isWhole());
    EXPECT_EQ(0u, text.unitOf(5, RE_Offsets::bytes));
    EXPECT_FALSE(reFindFirst(RE_Tree(u"a", false), text));
}

}  // namespace
}  // namespace corvane_tests
