// One character of UTF-8, well-formed or not.
//
// Ill-formed bytes are cut into pieces by the rule that decoders of the web and of Unicode agree on: the longest beginning
// of a well-formed sequence is one piece, any other byte is a piece of its own, and each piece stands for one U+FFFD.
#pragma once

#include <cstddef>
#include <cstdint>

struct RE_Utf8_Sequence {
    static constexpr std::uint32_t replacement = 0xFFFD;

    std::uint32_t character = replacement;
    std::size_t length = 1;    ///< bytes
    bool isCut = false;        ///< the bytes end within what may still become well-formed
    bool isIllFormed = false;  ///< `character` replaces the bytes
};

/// The sequence at `p`, which is before `end`. One that is cut has all the bytes up to `end` and counts as ill-formed.
inline RE_Utf8_Sequence reUtf8At(const std::uint8_t* p, const std::uint8_t* end) {
    const std::uint8_t lead = *p;
    if (lead < 0x80) {
        return {lead, 1};
    }
    // The second byte of some leads has narrower bounds: they exclude overlong forms, surrogates and what is above U+10FFFF.
    std::uint8_t low = 0x80;
    std::uint8_t high = 0xBF;
    std::size_t length = 2;
    std::uint32_t character = lead & 0x1FU;
    if (lead >= 0xF0) {
        length = 4;
        character = lead & 0x07U;
        low = lead == 0xF0 ? 0x90 : low;
        high = lead == 0xF4 ? 0x8F : high;
    } else if (lead >= 0xE0) {
        length = 3;
        character = lead & 0x0FU;
        low = lead == 0xE0 ? 0xA0 : low;
        high = lead == 0xED ? 0x9F : high;
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return {RE_Utf8_Sequence::replacement, 1, false, true};
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (p + i == end) {
            return {RE_Utf8_Sequence::replacement, i, true, true};
        }
        if (p[i] < low || p[i] > high) {
            return {RE_Utf8_Sequence::replacement, i, false, true};
        }
        character = character << 6 | (p[i] & 0x3FU);
        low = 0x80;
        high = 0xBF;
    }
    return {character, length};
}

/// Writes a character as UTF-16 and returns how many units it took. There must be room for two.
inline std::size_t rePutUtf16(std::uint32_t character, char16_t* to) {
    if (character < 0x10000) {
        *to = static_cast<char16_t>(character);
        return 1;
    }
    to[0] = static_cast<char16_t>(0xD7C0 + (character >> 10));
    to[1] = static_cast<char16_t>(0xDC00 + (character & 0x3FF));
    return 2;
}
