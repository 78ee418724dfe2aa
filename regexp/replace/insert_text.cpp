#include "regexp/replace/insert_text.h"

#include "host/allocation.h"

#include <cstring>

char16_t* insertText(char16_t* buffer, std::size_t length, std::size_t position, std::size_t removed,
                     const char16_t* source, std::size_t sourceLength, std::size_t* capacity) {
    const std::size_t newLength = length - removed + sourceLength;
    if (newLength > *capacity) {
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
