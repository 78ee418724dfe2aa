#include "regexp/base/insert_text.h"

#include "host/allocation.h"

#include <cstring>
#include <limits>
#include <new>

namespace {

constexpr std::size_t mostUnits = std::numeric_limits<std::size_t>::max() / sizeof(char16_t);

}  // namespace

char16_t* insertText(char16_t* buffer, std::size_t length, std::size_t position, std::size_t removed,
                     const char16_t* source, std::size_t sourceLength, std::size_t* capacity) {
    const std::size_t newLength = length - removed + sourceLength;
    if (newLength > *capacity) {
        // Where sizes have 32 bits, memory has room for texts that are too long together.
        if (newLength > mostUnits - *capacity) {
            throw std::bad_alloc();
        }
        const std::size_t larger = *capacity + newLength;
        buffer = static_cast<char16_t*>(utReallocWithCheck(buffer, larger * sizeof(char16_t)));
        *capacity = larger;
    }
    const std::size_t tail = position + removed;
    if (length > tail) {
        std::memmove(buffer + position + sourceLength, buffer + tail, (length - tail) * sizeof(char16_t));
    }
    if (sourceLength > 0) {
        std::memcpy(buffer + position, source, sourceLength * sizeof(char16_t));
    }
    return buffer;
}
