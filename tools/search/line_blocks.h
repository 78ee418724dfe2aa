// A stream cut into blocks of whole lines.
#pragma once

#include "tools/search/byte_source.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tool {

// Whole lines, each with its terminator; only the last line of a text may lack it.
struct LineBlock {
    std::string_view bytes;  // good until the next block is taken
    std::uint64_t offset;    // of the first byte, from the beginning of the text
};

// Memory is that of a block, or of a line that is longer.
class LineBlocks {
public:
    // Without `holdsAll` a block is what one read gives, up to its last line end; with it, the whole text.
    LineBlocks(char terminator, bool holdsAll) : terminator_(terminator), holdsAll_(holdsAll) {}

    // Begins another text, in the same memory. The source must outlive the blocks taken from it.
    void use(ByteSource& source);
    // False at the end of the text. Throws what the source throws.
    bool next(LineBlock& block);

private:
    bool fill();

    static constexpr std::size_t blockBytes = std::size_t{128} * 1024;

    char terminator_;
    bool holdsAll_;
    bool ended_ = false;
    ByteSource* source_ = nullptr;
    std::vector<char> buffer_;
    std::size_t begin_ = 0;  // of what was not handed out
    std::size_t end_ = 0;    // of what was read
    std::uint64_t offset_ = 0;
};

}  // namespace tool
