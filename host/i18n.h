// Narrow and UTF-16 standard strings, converted under the local code page (see host/code_page.h).

#pragma once

#include <string>

#include "host/export.h"

CORVANE_HOST_EXPORT std::u16string to_ustring(const char* text);
CORVANE_HOST_EXPORT std::string to_string(const std::u16string& text);
