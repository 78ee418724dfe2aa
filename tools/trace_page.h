// A page for browsers that replays a search: one file with nothing outside of it, so it can be sent by mail
// and kept.
#pragma once

#include "tools/compiled_pattern.h"
#include "tools/trace_log.h"

#include <string>
#include <string_view>

namespace tool {

// The whole text of the page, UTF-8. Its size is that of the log, some hundred bytes for each event.
// `parts` are those of the pattern.
std::string tracePage(const CompiledPattern& pattern, const RE_Pattern_Parts& parts,
                      std::u16string_view subject, const TraceLog& log);

}  // namespace tool
