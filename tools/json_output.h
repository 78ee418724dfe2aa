// Machine-readable output, one JSON object for each line. Positions and lengths are code units of UTF-16,
// lines and columns count from 1.
#pragma once

#include "tools/console_context.h"

#include <ostream>
#include <string_view>

namespace tool {

// The warning with its place in the pattern and, where there is one, its correction.
void writeJsonWarning(std::ostream& out, std::u16string_view pattern, const PatternWarning& warning);

}  // namespace tool
