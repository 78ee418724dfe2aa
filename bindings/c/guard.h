// What every function of the C interface goes through: exceptions become statuses, and what callers pass is checked before
// it is used.
#pragma once

#include "bindings/c/corvane/corvane.h"
#include "regexp/text/encoding.h"
#include "regexp/text/offset_index.h"
#include "regexp/text/text.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace corvane_c {

/// Leaves a function of the interface with a status.
struct Failure {
    cvre_status status;
    std::string message;
};

/// Notes a message for cvre_last_message. Does not throw: long messages are cut.
void setMessage(std::string_view message) noexcept;
/// What the host said last on this thread, or a sentence in its place.
const char* hostMessage() noexcept;
/// The status for the exception that is being handled, with its message noted.
cvre_status statusOfException() noexcept;

template <class Body>
cvre_status guarded(Body body) noexcept {
    try {
        return body();
    } catch (...) {
        return statusOfException();
    }
}

inline void require(bool holds, const char* message, cvre_status status = CVRE_BAD_ARGUMENT) {
    if (!holds) {
        throw Failure{status, message};
    }
}
template <class T>
T& needed(T* pointer) {
    require(pointer != nullptr, "a pointer is null");
    return *pointer;
}

/// No structure of any version is as large: a greater size is none.
constexpr std::size_t kLargestStructure = 4096;

/// The size of a structure in the first version that has it. A size of its own and one member more is the least: what is no
/// longer is the size of a pointer to a structure.
template <class T>
inline constexpr std::size_t kSmallestVersion = 2 * sizeof(std::size_t);
/// Its first version has texts, which are larger than their alignment: shorter sizes could end within one.
template <>
inline constexpr std::size_t kSmallestVersion<cvre_warning> = sizeof(cvre_warning);

/// The size that the caller set. The size of a type is a multiple of its alignment, and so is where a member as large as
/// that begins: a size that ends within a pointer or a number of 64 bits is that of no version.
template <class T>
std::size_t sizeAt(const T& given) {
    std::size_t size = 0;
    std::memcpy(&size, &given, sizeof size);
    require(size >= kSmallestVersion<T> && size <= kLargestStructure, "the size of a structure is not set",
            CVRE_BAD_SIZE);
    require(size % alignof(T) == 0, "the size of a structure ends within a member", CVRE_BAD_SIZE);
    return size;
}
/// The structure as this version knows it. Members that the caller's version lacks are zero; those that this version lacks
/// must be, as nobody would heed them.
template <class T>
T structureAt(const T* given) {
    T known{};
    known.size = sizeof known;
    if (given == nullptr) {
        return known;
    }
    const std::size_t size = sizeAt(*given);
    const auto* const bytes = reinterpret_cast<const unsigned char*>(given);
    const bool isKnown = size <= sizeof(T) ||
                         std::all_of(bytes + sizeof(T), bytes + size, [](unsigned char b) { return b == 0; });
    require(isKnown, "a structure has members of a later version", CVRE_BAD_SIZE);
    std::memcpy(static_cast<void*>(&known), given, std::min(size, sizeof known));
    known.size = sizeof known;
    return known;
}
/// Fills in as much as the caller's version has room for. Members that this version lacks become zero.
template <class T>
void fillIn(T* given, T known) {
    const std::size_t size = sizeAt(needed(given));
    known.size = size;
    std::memcpy(static_cast<void*>(given), &known, std::min(size, sizeof known));
    if (size > sizeof known) {
        std::memset(reinterpret_cast<unsigned char*>(given) + sizeof known, 0, size - sizeof known);
    }
}

/// The encoding of a text that is well made.
RE_Encoding checked(const cvre_text& text);
RE_Offsets checkedOffsets(cvre_offsets offsets);
inline void checkRange(std::int32_t value, std::int32_t greatest) {
    require(value >= 0 && value <= greatest, "a value that the enumeration does not have");
}
std::u16string unitsOf(const cvre_text& text);
/// A block for the caller, terminated by zeros.
cvre_buffer bufferOf(std::string_view bytes);
cvre_text textOf(std::string_view bytes, RE_Encoding encoding);
std::string encodedUnits(std::u16string_view units, RE_Encoding encoding);

}  // namespace corvane_c
