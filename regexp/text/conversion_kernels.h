// Vector conversions between encodings: each takes what it can do well and leaves the rest to its caller.
//
// All stop early, never late: at the first character that needs care, and where too little is left for a whole vector. They read and write nothing outside of what the arguments span; between the end of what was
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
/// UTF-8, well-formed or not, from one boundary of pieces to another: until one at or after `goal`, which may be passed by
/// the bytes of a few vectors, is reached, or too little is left before `end` for whole vectors.
RE_Conversion reDecodeUtf8(const std::uint8_t* from, const std::uint8_t* goal, const std::uint8_t* end,
                           char16_t* to, char16_t* toEnd);
/// Characters of the BMP that are no surrogates. `to` has room for as many units as there are characters. Returns how many.
std::size_t reNarrowUtf32(const char32_t* from, const char32_t* end, char16_t* to);
/// Units below 0x80, up to the first other one. `to` has room for as many bytes as there are units. Exact. Returns how many.
std::size_t reNarrowAscii(const char16_t* from, const char16_t* end, std::uint8_t* to);
