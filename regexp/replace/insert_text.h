// The one routine that writes text into a growable buffer of the host's.
#pragma once

#include "regexp/memory.h"

#include <cstddef>
#include <string_view>
#include <utility>

/// Replaces `removed` units at `position` of a buffer that holds `length` units by `sourceLength` units from
/// `source` (which must not lie in the buffer). When the new length exceeds `*capacity`, the capacity grows
/// to its old value plus the new length and the buffer is reallocated. Returns the buffer, which may have
/// moved; the caller updates the length. All sizes in code units.
char16_t* insertText(char16_t* buffer, std::size_t length, std::size_t position, std::size_t removed,
                     const char16_t* source, std::size_t sourceLength, std::size_t* capacity);

/// Owns the buffer until it is released, so that an exception frees it wherever it has moved to.
class RE_Piece_Writer {
public:
    RE_Piece_Writer(char16_t* block, std::size_t* usedUnits, std::size_t* room)
        : buffer(block), length(usedUnits), capacity(room) {}
    ~RE_Piece_Writer() { utFree(buffer); }
    RE_Piece_Writer(const RE_Piece_Writer&) = delete;
    RE_Piece_Writer& operator=(const RE_Piece_Writer&) = delete;

    std::size_t end() const { return *length; }
    void insert(std::size_t position, std::u16string_view text) {
        buffer = insertText(buffer, *length, position, 0, text.data(), text.size(), capacity);
        *length += text.size();
    }
    void append(std::u16string_view text) { insert(end(), text); }
    char16_t* release() { return std::exchange(buffer, nullptr); }

private:
    char16_t* buffer;
    std::size_t* length;
    std::size_t* capacity;
};
