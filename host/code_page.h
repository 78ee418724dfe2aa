// Conversion between UTF-16 and narrow text in the local code page: the character set of the process's locale
// as ICU sees it when the first conversion runs, so a program calls setlocale before that.
//
// Every result is a terminated block from the host's allocator that the caller frees with utFree. The length
// that is reported leaves the terminator out; with a null length pointer none is reported. What cannot be
// converted becomes the code page's replacement character. A null text is an empty one.

#pragma once

#include <cstddef>

#include "host/export.h"

CORVANE_HOST_EXPORT char16_t* lcp_to_utf16(const char* text, size_t* length);
CORVANE_HOST_EXPORT char16_t* lcp_to_utf16(const char* text, size_t bytes, size_t* length);

CORVANE_HOST_EXPORT char* utf16_to_lcp(const char16_t* text, size_t* length);
CORVANE_HOST_EXPORT char* utf16_to_lcp_n(const char16_t* text, size_t units, size_t* length);
