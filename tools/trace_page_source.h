// The fixed parts of the page that replays a search. The page is the head, "const trace = DATA;" and the
// script, in this order.
#pragma once

#include <string_view>

namespace tool {

extern const std::string_view tracePageHead;
extern const std::string_view tracePageScript;

}  // namespace tool
