// The compile and match modes of a pattern.
#pragma once

#include <cstdint>

/// Bit set of the modes below.
using RE_Flags = std::uint32_t;

inline constexpr RE_Flags RE_FLAG_IGNORE_CASE = 0x01;  ///< inline letter i
inline constexpr RE_Flags RE_FLAG_DOT_ALL = 0x02;  ///< inline letter s: `.` matches every unit, line feed too
inline constexpr RE_Flags RE_FLAG_LINE_ANCHORS = 0x04;  ///< inline letter m: `^` and `$` match at lines too
inline constexpr RE_Flags RE_FLAG_FREE_SPACING =
    0x08;                                           ///< inline letter x: blanks and `#` comments are skipped
inline constexpr RE_Flags RE_FLAG_EVALUATE = 0x10;  ///< inline letter e: dynamic expressions may be compiled
inline constexpr RE_Flags RE_FLAG_ALLOW_EMPTY = 0x20;  ///< a zero-length match counts as a match
/// Closing a token leaves the higher ones in effect, as in other engines. Otherwise they are out of effect until a token
/// with a higher number than theirs closes. There is no inline letter for it.
inline constexpr RE_Flags RE_FLAG_KEEP_TOKENS = 0x40;
/// Lines apart: no unit of the pattern matches a line feed, whatever it says, and every `^` and `$` is that of a line. A
/// search of a text of many lines then finds in each line what it would find were the line the whole subject, except for
/// empty matches after a line feed that ends the text. No inline letter changes it. Texts that are read as patterns during a
/// search, and expressions of the host, see the whole subject all the same.
inline constexpr RE_Flags RE_FLAG_LINES_APART = 0x80;

/// Modes of the constructors that take no flags: dot matches all, evaluation left to the context.
inline constexpr RE_Flags RE_DEFAULT_FLAGS = RE_FLAG_DOT_ALL | RE_FLAG_EVALUATE;
