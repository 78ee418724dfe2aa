// Vector conversions between encodings: each takes what it can do well and leaves the rest to its caller.
//
// All stop early, never late: at the first character that needs care (ill-formed, outside of the BMP), and where too little
// is left for a whole vector. They read and write nothing outside of what the arguments span; between the end of what was
// written and the end of the room anything may be written.
#pragma once

#include "regexp/text/encoding.h"

#include <cstddef>
#include <cstdint>

/// Widens ASCII up to the first other byte. `to` has room for as many units as there are bytes. Exact: stops at nothing else.
/// Returns how many.
std::size_t reWidenAscii(const std::uint8_t* from, const std::uint8_t* end, char16_t* to);
/// Widens any bytes.
void reWidenLatin1(const std::uint8_t* from, const std::uint8_t* end, char16_t* to);
/// Well-formed UTF-8 of the BMP, up to a boundary of characters.
RE_Conversion reDecodeUtf8Bmp(const std::uint8_t* from, const std::uint8_t* end, char16_t* to,
                              char16_t* toEnd);
/// Characters of the BMP that are no surrogates. `to` has room for as many units as there are characters. Returns how many.
std::size_t reNarrowUtf32(const char32_t* from, const char32_t* end, char16_t* to);
/// Units below 0x80, up to the first other one. `to` has room for as many bytes as there are units. Exact. Returns how many.
std::size_t reNarrowAscii(const char16_t* from, const char16_t* end, std::uint8_t* to);
