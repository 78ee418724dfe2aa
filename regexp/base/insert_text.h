// Writing text into a growable buffer of the host's: the one routine that does it, and a guard for a buffer
// that was taken over.
//
// Buffers are passed as pointer, length and capacity because that is how they cross the interface to the
// host.
#pragma once

#include "regexp/base/memory.h"

#include <cstddef>
#include <string_view>
#include <utility>

/// Replaces `removed` units at `position` of a buffer that holds `length` units by `sourceLength` units
/// from `source`, which must not lie in the buffer: it may move. Requires `position + removed <= length`.
/// Returns the buffer; the caller updates the length. All sizes count code units.
///
/// When the new length exceeds `*capacity`, the capacity grows to its old value plus the new length, so
/// that appending piece by piece takes linear time. Throws `std::bad_alloc`; then buffer and capacity are
/// as they were and still the caller's.
char16_t* insertText(char16_t* buffer, std::size_t length, std::size_t position, std::size_t removed,
                     const char16_t* source, std::size_t sourceLength, std::size_t* capacity);

/// Owns a buffer that was taken over (see `RE_Replaceable::build_replace`) until it is released, so that an
/// exception frees it wherever it has moved to. The length and the capacity stay the caller's and are
/// updated with each insertion.
class RE_Piece_Writer {
public:
    RE_Piece_Writer(char16_t* block, std::size_t* usedUnits, std::size_t* room)
        : buffer(block), length(usedUnits), capacity(room) {}
    ~RE_Piece_Writer() { utFree(buffer); }
    RE_Piece_Writer(const RE_Piece_Writer&) = delete;
    RE_Piece_Writer& operator=(const RE_Piece_Writer&) = delete;

    /// Where `append` writes. Positions below it stay valid when text is inserted after them.
    std::size_t end() const { return *length; }
    void insert(std::size_t position, std::u16string_view text) {
        buffer = insertText(buffer, *length, position, 0, text.data(), text.size(), capacity);
        *length += text.size();
    }
    void append(std::u16string_view text) { insert(end(), text); }
    /// The buffer, which is the caller's again. The last call.
    char16_t* release() { return std::exchange(buffer, nullptr); }

private:
    char16_t* buffer;
    std::size_t* length;
    std::size_t* capacity;
};
