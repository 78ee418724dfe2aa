// The lines of a block as UTF-16, and where the lines of the units are among the bytes.
#pragma once

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
    std::string_view bytes() const { return bytes_; }
    // Unit and byte number are the same: in ASCII, and where each ill-formed byte is one U+FFFD.
    bool unitsAreBytes() const { return length_ == bytes_.size(); }

    // The line that holds the unit, with its terminator; a terminator belongs to the line it ends. In units.
    Span lineAround(std::size_t unit) const;
    // The end of the line that holds the unit, past its terminator.
    std::size_t lineEnd(std::size_t unit) const;
    // The byte at which the line begins that begins at this unit.
    std::size_t byteOfLine(std::size_t unit) const;

private:
    // Where a piece of the block begins. Pieces are short, so that a line is found by counting line ends in one of them.
    struct Piece {
        std::size_t byte;
        std::size_t unit;
    };
    static constexpr std::size_t pieceBytes = 1024;

    void convertPieces(std::size_t byte);

    std::string_view bytes_;
    char terminator_ = '\n';
    std::unique_ptr<char16_t[]> units_ = std::make_unique<char16_t[]>(1);
    std::size_t room_ = 1;
    std::size_t length_ = 0;
    std::vector<Piece> pieces_;
};

// The byte of the UTF-8, well-formed or not, at which the unit of its conversion begins.
std::size_t byteOfUnit(std::string_view utf8, std::size_t unit);

}  // namespace tool
