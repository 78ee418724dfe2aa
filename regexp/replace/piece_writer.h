// A buffer while a piece of replaced text is inserted into it.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/base/insert_text.h"

#include <cstddef>
#include <string_view>
#include <utility>

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
