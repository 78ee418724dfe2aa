// Growth adds the new length to the old capacity. As that is exceeded, a buffer at least doubles.
#include "regexp/base/insert_text.h"

#include "host/allocation.h"

#include <cstring>
#include <limits>
#include <new>

namespace {

// What a size in bytes can express.
constexpr std::size_t mostUnits = std::numeric_limits<std::size_t>::max() / sizeof(char16_t);

}  // namespace

char16_t* insertText(char16_t* buffer, std::size_t length, std::size_t position, std::size_t removed,
                     const char16_t* source, std::size_t sourceLength, std::size_t* capacity) {
    const std::size_t newLength = length - removed + sourceLength;
    if (newLength > *capacity) {
        // The sum may exceed a size where sizes have 32 bits, although each of its parts fits into memory.
        if (newLength > mostUnits - *capacity) {
            throw std::bad_alloc();
        }
        const std::size_t larger = *capacity + newLength;
        buffer = static_cast<char16_t*>(utReallocWithCheck(buffer, larger * sizeof(char16_t)));
        *capacity = larger;
    }
    // What follows the removed part moves first, as the new text may be longer and overwrite it.
    const std::size_t tail = position + removed;
    if (length > tail) {
        std::memmove(buffer + position + sourceLength, buffer + tail, (length - tail) * sizeof(char16_t));
    }
    if (sourceLength > 0) {
        std::memcpy(buffer + position, source, sourceLength * sizeof(char16_t));
    }
    return buffer;
}
