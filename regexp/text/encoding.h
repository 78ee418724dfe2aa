// The encodings that text comes in from outside, and how far a conversion has got.
#pragma once

#include <cstddef>
#include <cstdint>

/// UTF-16 and UTF-32 are in the byte order of the machine and begin with no byte order mark: a mark is a character like
/// any other.
enum class RE_Encoding : std::uint8_t { utf8, latin1, utf16, utf32 };

/// Bytes of the smallest piece that the encoding is made of. Source offsets of a text count these pieces.
constexpr std::size_t reUnitBytes(RE_Encoding encoding) {
    switch (encoding) {
        case RE_Encoding::utf16:
            return 2;
        case RE_Encoding::utf32:
            return 4;
        case RE_Encoding::utf8:
        case RE_Encoding::latin1:
            break;
    }
    return 1;
}

/// How much a conversion took and gave.
struct RE_Conversion {
    std::size_t read = 0;     ///< source pieces: bytes of UTF-8 and Latin-1, units of UTF-16 and UTF-32
    std::size_t written = 0;  ///< pieces of what was converted to
    std::size_t pairs = 0;    ///< surrogate pairs on the UTF-16 side

    void add(const RE_Conversion& more) {
        read += more.read;
        written += more.written;
        pairs += more.pairs;
    }
};
