// What each numbered warning of the pattern compiler means, in one sentence for the reader of a terminal.
#pragma once

#include <string_view>

namespace tool {

std::string_view warningSentence(unsigned number);

}  // namespace tool
