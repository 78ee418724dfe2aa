// A page for browsers that replays a search: one file with nothing outside of it.
#pragma once

#include "tools/compiled_pattern.h"
#include "tools/trace_log.h"

#include <string>
#include <string_view>

namespace tool {

std::string tracePage(const CompiledPattern& pattern, std::u16string_view subject, const TraceLog& log);

}  // namespace tool
