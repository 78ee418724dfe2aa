// The fixed parts of the page that replays a search: what stands before the data, and what stands behind it.
#pragma once

#include <string_view>

namespace tool {

extern const std::string_view tracePageHead;
extern const std::string_view tracePageScript;

}  // namespace tool
