// Classification and case mapping of single UTF-16 code units, by Unicode's properties and without a locale.
// A unit is judged alone: half of a surrogate pair belongs to no class and has no case.
//
// Trap: digits are the decimal digits of every script. Code that turns a digit into a number tests for ASCII
// itself.

#pragma once

#include "host/export.h"

CORVANE_HOST_EXPORT bool cvu_isalpha(char16_t unit);
CORVANE_HOST_EXPORT bool cvu_isalnum(char16_t unit);
CORVANE_HOST_EXPORT bool cvu_isdigit(char16_t unit);
// Separators of every kind, the controls 9 to 13 and 28 to 31, and the next-line control 133.
CORVANE_HOST_EXPORT bool cvu_isspace(char16_t unit);
// Decimal digits of every script and the letters a to f, also in their full-width forms.
CORVANE_HOST_EXPORT bool cvu_isxdigit(char16_t unit);
CORVANE_HOST_EXPORT bool cvu_islower(char16_t unit);
CORVANE_HOST_EXPORT bool cvu_isupper(char16_t unit);

// One unit in, one unit out; a unit without a mapping, or with one that does not fit a unit, is returned as
// it is.
CORVANE_HOST_EXPORT char16_t cvu_tolower(char16_t unit);
CORVANE_HOST_EXPORT char16_t cvu_toupper(char16_t unit);
