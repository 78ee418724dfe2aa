// The engine's view of the program. Positions are computed at once, while the text that a warning points into
// is there.
#include "tools/console_context.h"

#include <algorithm>

namespace tool {

void ConsoleContext::warn(const char16_t* where, RE_Warning warning) {
    warnings_.push_back({static_cast<std::size_t>(where - text_.data()), warning});
}

std::vector<PatternWarning> ConsoleContext::warnings() const {
    // Stable, so that warnings at one position keep the order in which they were raised.
    std::vector<PatternWarning> sorted = warnings_;
    std::ranges::stable_sort(sorted, {}, &PatternWarning::position);
    return sorted;
}

}  // namespace tool
