// String functions over UTF-16 code units.
//
// Two families that treat NUL differently:
// - the comparisons are those of C strings: they stop at a NUL unit common to both texts;
// - the searches take the length of the text and see NUL as a unit like any other.

#pragma once

#include <cstddef>

#include "host/export.h"

CORVANE_HOST_EXPORT size_t utf16_strlen(const char16_t* text);

// Less than, equal to or greater than zero, by unit values.
CORVANE_HOST_EXPORT int utf16_strcmp(const char16_t* left, const char16_t* right);
// The first `count` units at most.
CORVANE_HOST_EXPORT int utf16_strncmp(const char16_t* left, const char16_t* right, size_t count);
// The same with both sides folded unit by unit through cvu_tolower.
CORVANE_HOST_EXPORT int utf16_strnicmp(const char16_t* left, const char16_t* right, size_t count);

// First and last place of a unit in text[0, length); null when there is none.
CORVANE_HOST_EXPORT const char16_t* utf16_strnchr(const char16_t* text, size_t length, char16_t unit);
CORVANE_HOST_EXPORT const char16_t* utf16_strnrchr(const char16_t* text, size_t length, char16_t unit);

// First and last place of a string in text[0, length); null when there is none. The empty string is found at
// the start by the first and at the end by the second.
CORVANE_HOST_EXPORT const char16_t* utf16_strnstr(const char16_t* text, size_t length, const char16_t* part,
                                                  size_t partLength);
CORVANE_HOST_EXPORT const char16_t* utf16_strnrstr(const char16_t* text, size_t length, const char16_t* part,
                                                   size_t partLength);
