// A mode of compilation for callers who search many lines at once and want what a search of each line alone finds.
#pragma once

#include "regexp/base/flags.h"

/// Lines apart: no unit of the pattern matches a line feed, whatever it says, and every `^` and `$` is that of a line. A
/// search of a text of many lines then finds in each line what it would find were the line the whole subject, except for
/// empty matches after a line feed that ends the text. No inline letter changes it. Texts that are read as patterns during a
/// search, and expressions of the host, see the whole subject all the same.
inline constexpr RE_Flags RE_FLAG_LINES_APART = 0x80;
