// Conversions between encodings, against ICU's converters, which follow the same rule for ill-formed bytes.
//
// What goes wrong is at edges: a sequence across two vectors, a broken one beside a good one, the last bytes of a block.
// So texts are drawn from pieces of every kind, and cut everywhere.
#include "regexp/text/conversion.h"
#include "regexp/text/converter.h"
#include "tests/support/differential.h"

#include <gtest/gtest.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <cstring>
#include <string>
#include <vector>

namespace corvane_tests {
namespace {

std::u16string icuFromUtf8(const std::string& bytes) {
    std::u16string units(bytes.size() + 1, u'\0');
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), static_cast<int32_t>(units.size()), &length, bytes.data(),
                         static_cast<int32_t>(bytes.size()), 0xFFFD, nullptr, &error);
    EXPECT_TRUE(U_SUCCESS(error));
    units.resize(static_cast<size_t>(length));
    return units;
}

std::string icuToUtf8(const std::u16string& units) {
    std::string bytes(units.size() * 3 + 1, '\0');
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8WithSub(bytes.data(), static_cast<int32_t>(bytes.size()), &length, units.data(),
                       static_cast<int32_t>(units.size()), 0xFFFD, nullptr, &error);
    EXPECT_TRUE(U_SUCCESS(error));
    bytes.resize(static_cast<size_t>(length));
    return bytes;
}

/// In a block of its own size, so that a sanitizer sees what is read past the end.
std::u16string decoded(const std::string& bytes) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    std::vector<char16_t> units(bytes.size() + 2);
    const RE_Conversion done = reToUtf16(RE_Encoding::utf8, exact.data(), exact.data() + exact.size(), true,
                                         units.data(), units.data() + units.size());
    EXPECT_EQ(bytes.size(), done.read);
    size_t pairs = 0;
    for (size_t i = 0; i < done.written; ++i) {
        pairs += (units[i] & 0xFC00) == 0xDC00;
    }
    EXPECT_EQ(pairs, done.pairs);
    return {units.data(), done.written};
}

std::string drawBytes(PatternSource& source, size_t pieces) {
    static const std::string kPieces[] = {"a",
                                          "the quick brown fox jumps over",
                                          "\xC3\xA4",
                                          "\xD0\x96\xD0\xB8",
                                          "\xE5\xA4\xA9\xE5\x9C\xB0",
                                          "\xE2\x82\xAC",
                                          "\xF0\x9F\x98\x80",
                                          "\n",
                                          std::string(1, '\0'),
                                          "\xEF\xBF\xBF",
                                          "\xF4\x8F\xBF\xBF"};
    static const std::string kBroken[] = {"\xFF",
                                          "\x80",
                                          "\xC0\x80",
                                          "\xC3",
                                          "\xE0\x80\x80",
                                          "\xE2\x82",
                                          "\xED\xA0\x80",
                                          "\xF0\x80\x80\x80",
                                          "\xF0\x9F\x98",
                                          "\xF4\x90\x80\x80",
                                          "\xF8\x88\x80\x80\x80",
                                          "\xE5\xA4",
                                          "\xC1\xBF",
                                          "\xF0\x9F"};
    std::string bytes;
    const bool isBroken = source.oneIn(2);
    const size_t favourite = source.below(std::size(kPieces));
    for (; pieces > 0; --pieces) {
        if (isBroken && source.oneIn(6)) {
            bytes += kBroken[source.below(std::size(kBroken))];
        } else if (isBroken && source.oneIn(20)) {
            bytes += static_cast<char>(source.below(256));
        } else {
            bytes += kPieces[source.oneIn(2) ? favourite : source.below(std::size(kPieces))];
        }
    }
    return bytes;
}

size_t rounds() {
    return environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 3000 : 20'000);
}

// CMake runs these once for each width of vectors that a processor may have.
TEST(ConversionKernels, DecodeUtf8AsIcuDoes) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 5));
    for (size_t round = rounds(); round > 0; --round) {
        const std::string bytes = drawBytes(source, source.below(40));
        ASSERT_EQ(icuFromUtf8(bytes), decoded(bytes)) << ::testing::PrintToString(bytes);
    }
}

// Each sequence of two bytes, of three with every beginning, and of the longer ones at every place of a vector.
TEST(ConversionKernels, DecodeEverySequenceAtEveryPlace) {
    for (unsigned first = 0x80; first < 0x100; ++first) {
        for (unsigned second = 0x70; second < 0x100; second += first < 0xC0 ? 9 : 1) {
            for (const char* rest : {"", "\x80", "\xBF\xBF", "z"}) {
                const std::string sequence = std::string{static_cast<char>(first), static_cast<char>(second)} + rest;
                const size_t place = (first * 7 + second) % 70;
                const std::string bytes = std::string(place, 'x') + sequence + std::string(70, 'y');
                ASSERT_EQ(icuFromUtf8(bytes), decoded(bytes)) << first << ' ' << second;
                ASSERT_EQ(icuFromUtf8(sequence), decoded(sequence)) << first << ' ' << second;
            }
        }
    }
    for (size_t place = 0; place < 70; ++place) {
        const std::string bytes =
            std::string(place, 'x') + "\xE5\xA4\xA9\xC3\xA4\xF0\x9F\x98\x80" + std::string(70, 'y');
        ASSERT_EQ(icuFromUtf8(bytes), decoded(bytes)) << place;
    }
}

// A text converted goal by goal is what it is as a whole, and no goal is missed by far.
TEST(ConversionKernels, StopAtABoundarySoonAfterAGoal) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 8));
    for (size_t round = rounds() / 4; round > 0; --round) {
        const std::string text = drawBytes(source, source.below(120));
        const std::vector<std::uint8_t> bytes(text.begin(), text.end());
        const std::uint8_t* const end = bytes.data() + bytes.size();
        std::vector<char16_t> units(bytes.size() + reMostPastGoal);
        RE_Conversion all;
        while (all.read < bytes.size()) {
            const std::uint8_t* const p = bytes.data() + all.read;
            const std::uint8_t* const goal =
                p + std::min<std::ptrdiff_t>(end - p, 1 + static_cast<int>(source.below(200)));
            const RE_Conversion done =
                reUtf8ToUtf16(p, goal, end, true, units.data() + all.written, units.data() + units.size());
            ASSERT_GE(p + done.read, goal);
            ASSERT_LT(p + done.read, goal + reMostPastGoal);
            all.add(done);
        }
        ASSERT_EQ(icuFromUtf8(text), std::u16string(units.data(), all.written)) << ::testing::PrintToString(text);
    }
}

TEST(ConversionKernels, EncodeUtf8AsIcuDoes) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 6));
    for (size_t round = rounds() / 2; round > 0; --round) {
        std::u16string units = icuFromUtf8(drawBytes(source, source.below(40)));
        for (char16_t& unit : units) {
            unit = source.oneIn(25) ? static_cast<char16_t>(0xD800 + source.below(0x800)) : unit;
        }
        std::vector<std::byte> bytes(units.size() * 3 + 4);
        const RE_Conversion done = reFromUtf16(RE_Encoding::utf8, units.data(), units.data() + units.size(), true,
                                               bytes.data(), bytes.data() + bytes.size());
        ASSERT_EQ(units.size(), done.read);
        const std::string got(reinterpret_cast<const char*>(bytes.data()), done.written);
        ASSERT_EQ(icuToUtf8(units), got) << printable(units);
    }
}

/// Feeds a converter with blocks of random sizes and rooms.
template <class Out, class Converter, class In>
std::vector<Out> inBlocks(PatternSource& source, Converter converter, const std::vector<In>& text, size_t room) {
    std::vector<Out> all;
    std::vector<Out> some(room);
    for (size_t at = 0; at < text.size();) {
        const size_t size = std::min<size_t>(text.size() - at, source.below(source.oneIn(3) ? 100 : 5));
        const std::vector<In> block(text.begin() + static_cast<std::ptrdiff_t>(at),
                                    text.begin() + static_cast<std::ptrdiff_t>(at + size));
        for (std::span<const In> rest(block); !rest.empty();) {
            const RE_Conversion done = converter.convert(rest, some);
            EXPECT_LE(done.written, room);
            all.insert(all.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(done.written));
            rest = rest.subspan(done.read);
            if (done.read == 0 && done.written == 0) {
                ADD_FAILURE() << "no progress";
                return all;
            }
        }
        at += size;
    }
    const RE_Conversion done = converter.finish(some);
    all.insert(all.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(done.written));
    return all;
}

std::vector<std::byte> bytesOf(const void* data, size_t size) {
    std::vector<std::byte> bytes(size);
    if (size != 0) {
        std::memcpy(bytes.data(), data, size);
    }
    return bytes;
}

TEST(Converters, TakeTextsInBlocksOfAnySize) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 7));
    for (size_t round = rounds() / 4; round > 0; --round) {
        const std::string text = drawBytes(source, source.below(30));
        const std::u16string units = icuFromUtf8(text);
        const std::vector<char16_t> expected(units.begin(), units.end());
        const size_t room = 4 + source.below(60);
        ASSERT_EQ(expected, inBlocks<char16_t>(source, RE_Text_Decoder(RE_Encoding::utf8),
                                               bytesOf(text.data(), text.size()), room));
        // There and back, by each encoding that has all characters.
        for (const RE_Encoding encoding : {RE_Encoding::utf8, RE_Encoding::utf16, RE_Encoding::utf32}) {
            const auto bytes = inBlocks<std::byte>(source, RE_Text_Encoder(encoding), expected, 4 + room / 4 * 4);
            ASSERT_EQ(expected, inBlocks<char16_t>(source, RE_Text_Decoder(encoding), bytes, room))
                << static_cast<int>(encoding);
        }
    }
}

TEST(Converters, ReplaceWhatIsNoCharacter) {
    PatternSource source(1);
    const char32_t wide[] = {u'a', 0xD800, 0x110000, 0x1F600, 0xFFFFFFFF, 0xE000, 0x10FFFF};
    const std::vector<char16_t> expected{u'a', 0xFFFD, 0xFFFD, 0xD83D, 0xDE00, 0xFFFD, 0xE000, 0xDBFF, 0xDFFF};
    ASSERT_EQ(expected, inBlocks<char16_t>(source, RE_Text_Decoder(RE_Encoding::utf32), bytesOf(wide, sizeof wide), 5));
    EXPECT_EQ(std::vector<char16_t>{0xFFFD},
              inBlocks<char16_t>(source, RE_Text_Decoder(RE_Encoding::utf32), bytesOf(wide, 3), 5))
        << "a part of a piece";

    const std::vector<char16_t> units{u'a', 0xE9, 0x20AC, 0xD83D, 0xDE00, 0xDC00, u'b', 0xD800};
    const char latin[] = "a\xE9???\x62?";
    EXPECT_EQ(bytesOf(latin, sizeof latin - 1),
              inBlocks<std::byte>(source, RE_Text_Encoder(RE_Encoding::latin1), units, 8));
    const std::string all = [] {
        std::string bytes;
        for (int i = 0; i < 256; ++i) {
            bytes += static_cast<char>(i);
        }
        return bytes;
    }();
    const auto widened = inBlocks<char16_t>(source, RE_Text_Decoder(RE_Encoding::latin1), bytesOf(all.data(), 256), 70);
    ASSERT_EQ(256u, widened.size());
    for (size_t i = 0; i < 256; ++i) {
        ASSERT_EQ(i, widened[i]);
    }
}

}  // namespace
}  // namespace corvane_tests
