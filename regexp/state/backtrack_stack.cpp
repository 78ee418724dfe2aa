// Growth of the stack: by doubling, so that a push takes constant time on average.
#include "regexp/state/backtrack_stack.h"

#include <limits>
#include <stdexcept>

// Marks first: where the records are refused afterwards there are only marks too many. Indexes are 32-bit and
// signed, and so is the limit. The message is the one with which the containers themselves refuse to grow.
void RE_Backtrack_Stack::grow() {
    const std::size_t limit = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    if (records.size() >= limit) {
        throw std::length_error("get_next_capacity, allocator's max size reached");
    }
    const std::size_t doubled = records.size() > limit / 2 ? limit : records.size() * 2;
    marks.resize(doubled);
    records.resize(doubled);
}
