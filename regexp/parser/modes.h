// Inline mode letters, as in (?i-s).
#pragma once

#include "regexp/eval/warning.h"
#include "regexp/base/flags.h"

#include <cstddef>

/// What a list of mode letters says. `end` is the index of the unit that ended it.
struct RE_Modes {
    RE_Flags flags = 0;
    std::size_t end = 0;
    RE_Warning problem = RE_WARNING_NONE;  ///< found at `end`
};

/// Reads mode letters from `at`, changing `flags`. The list ends well at a `:` or `)` after at least one
/// letter.
RE_Modes readModes(const char16_t* text, std::size_t length, std::size_t at, RE_Flags flags);
