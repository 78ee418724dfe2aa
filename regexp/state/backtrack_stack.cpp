#include "regexp/state/backtrack_stack.h"

#include <limits>
#include <stdexcept>

void RE_Backtrack_Stack::grow() {
    const std::size_t limit = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    if (records.size() >= limit) {
        throw std::length_error("get_next_capacity, allocator's max size reached");
    }
    const std::size_t doubled = records.size() > limit / 2 ? limit : records.size() * 2;
    marks.resize(doubled);
    records.resize(doubled);
}
