// Whole stretches of text from one encoding to another: vectors where they can, character by character where care is needed.
#pragma once

#include "regexp/base/export.h"
#include "regexp/text/encoding.h"

#include <cstddef>
#include <cstdint>

/// Converts to UTF-16 as much as there is room for. `from` and `end` are aligned as the pieces of the encoding are.
///
/// Ill-formed text becomes U+FFFD: in UTF-8 one for each longest beginning of a well-formed sequence and one for each other
/// byte, in UTF-32 one for each value that is no character. Units of UTF-16 stay as they are, paired or not.
///
/// Unless `isLast`, a sequence of UTF-8 that is cut by `end` (three bytes at most) is not read. With room for two units or
/// more something is read otherwise.
CORVANE_REGEXP_EXPORT RE_Conversion reToUtf16(RE_Encoding encoding, const void* from, const void* end,
                                              bool isLast, char16_t* to, char16_t* toEnd);

/// UTF-8 up to the first boundary of characters that is at or after `goal` and that vectors see, within the 64 bytes after
/// it; what lies there up to `end` is read, so that the last characters before a goal cost no more than others.
RE_Conversion reUtf8ToUtf16(const std::uint8_t* from, const std::uint8_t* goal, const std::uint8_t* end,
                            bool isLast, char16_t* to, char16_t* toEnd);
constexpr std::size_t reMostPastGoal = 64;

/// Converts UTF-16 to another encoding, as much as there is room for. A unit that belongs to no pair becomes U+FFFD, and
/// what Latin-1 lacks becomes `?`; UTF-16 stays as it is. Unless `isLast`, a first half of a pair at the end is not read.
/// `pairs` counts those converted. With room for four bytes or more something is read otherwise.
CORVANE_REGEXP_EXPORT RE_Conversion reFromUtf16(RE_Encoding encoding, const char16_t* from,
                                                const char16_t* end, bool isLast, void* to, void* toEnd);
