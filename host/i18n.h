// Narrow and UTF-16 standard strings, converted under the local code page (see host/code_page.h).

#pragma once

#include <string>

#include "host/export.h"

// `text` is terminated; null is an empty text.
CORVANE_HOST_EXPORT std::u16string to_ustring(const char* text);
// NULs inside `text` are kept.
CORVANE_HOST_EXPORT std::string to_string(const std::u16string& text);
