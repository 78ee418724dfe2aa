// Machine-readable output, one JSON object a line.
#pragma once

#include "tools/console_context.h"

#include <ostream>
#include <string_view>

namespace tool {

void writeJsonWarning(std::ostream& out, std::u16string_view pattern, const PatternWarning& warning);

}  // namespace tool
