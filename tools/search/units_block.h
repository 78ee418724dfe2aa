// The lines of a block as UTF-16, and where the lines of the units are among the bytes.
#pragma once

#include "regexp/text/converter.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace tool {

// A stretch of bytes or units: from `begin` up to `end`.
struct Span {
    std::size_t begin = 0;
    std::size_t end = 0;

    std::size_t size() const { return end - begin; }
    bool operator==(const Span&) const = default;
};

// Storage serves one block after the other. Bytes that are no UTF-8 become U+FFFD. Refers to the bytes.
class UnitsBlock {
public:
    void assign(std::string_view bytes, char terminator);

    // Never null.
    std::u16string_view units() const { return {units_.get(), length_}; }
    // Makes a copy in which a carriage return in front of a line feed is a line feed, too: a pattern that was compiled for lines
    // apart finds the line's end before it. Between the two it sees an empty line that is none: `isWithinLineEnd`. False, and no
    // copy, where a carriage return is anywhere else.
    bool unifyLineEnds();
    // The copy, or the units themselves, if there was no carriage return.
    std::u16string_view unified() const { return {isUnified_ ? copy_.get() : units_.get(), length_}; }
    bool isWithinLineEnd(std::size_t unit) const {
        return isUnified_ && unit != 0 && unit < length_ && units_[unit] == u'\n' &&
               units_[unit - 1] == u'\r';
    }
    std::string_view bytes() const { return bytes_; }
    // Unit and byte number are the same: in ASCII, and where each ill-formed byte is one U+FFFD.
    bool unitsAreBytes() const { return length_ == bytes_.size(); }

    // The line that holds the unit, with its terminator; a terminator belongs to the line it ends. In units.
    Span lineAround(std::size_t unit) const;
    // The end of the line that holds the unit, past its terminator.
    std::size_t lineEnd(std::size_t unit) const;
    // The byte at which the line begins that begins at this unit. Fastest when units ascend.
    std::size_t byteOfLine(std::size_t unit);

private:
    // Where a piece of the block begins. Pieces are short, so that a line is found by counting line ends in one of them.
    struct Piece {
        std::size_t byte;
        std::size_t unit;
    };
    static constexpr std::size_t pieceBytes = 1024;
    static constexpr std::size_t asciiBytes = std::size_t{16} * 1024;

    std::size_t convert(std::string_view piece, std::size_t unit);
    void convertPieces(std::size_t byte);

    RE_Text_Decoder decoder_{RE_Encoding::utf8};
    std::string_view bytes_;
    char terminator_ = '\n';
    std::unique_ptr<char16_t[]> units_ = std::make_unique<char16_t[]>(1);
    std::size_t room_ = 1;
    std::size_t length_ = 0;
    std::vector<Piece> pieces_;
    Piece last_{};  // of the last look-up: a line begins there
    std::unique_ptr<char16_t[]> copy_;
    std::size_t copyRoom_ = 0;
    bool isUnified_ = false;
};

// The byte of the UTF-8, well-formed or not, at which the unit of its conversion begins.
std::size_t byteOfUnit(std::string_view utf8, std::size_t unit);

}  // namespace tool
