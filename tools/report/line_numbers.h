// Numbers of lines, for places in ascending order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tool {

// Reads every byte once however many places are looked up. Refers to the block.
class LineNumbers {
public:
    explicit LineNumbers(char terminator) : terminator_(terminator) {}

    // A text begins at line 1, a part of one at another.
    void beginText(std::uint64_t firstLine) { line_ = firstLine; }
    void beginBlock(std::string_view block) {
        block_ = block;
        at_ = 0;
    }
    // Of the line that begins at this byte of the block; bytes must not descend.
    std::uint64_t at(std::size_t byte);
    // Counts the rest of the block.
    void endBlock() { at(block_.size()); }

private:
    char terminator_;
    std::string_view block_;
    std::size_t at_ = 0;
    std::uint64_t line_ = 1;
};

// How often the byte occurs.
std::uint64_t countByte(std::string_view text, char byte);

}  // namespace tool
