// Line numbers of a large text, for positions in ascending order: the cursor keeps where it is, so all calls
// together go over the text once.
#include "tools/line_index.h"

#include <algorithm>

namespace tool {

void LineCursor::advanceTo(std::size_t position) {
    // Only the stretch since the last call is looked at.
    const std::u16string_view passed = text_.substr(position_, position - position_);
    const std::size_t lastLineFeed = passed.rfind(u'\n');
    if (lastLineFeed != std::u16string_view::npos) {
        line_ += static_cast<std::size_t>(std::ranges::count(passed, u'\n'));
        lineBegin_ = position_ + lastLineFeed + 1;
    }
    position_ = position;
}

// The last line of a text may lack its line feed.
std::size_t lineEndAfter(std::u16string_view text, std::size_t position) {
    const std::size_t lineFeed = text.find(u'\n', position);
    return lineFeed == std::u16string_view::npos ? text.size() : lineFeed + 1;
}

}  // namespace tool
