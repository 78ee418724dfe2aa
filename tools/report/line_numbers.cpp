// Numbers of lines, for places in ascending order.
#include "tools/report/line_numbers.h"

#include <algorithm>

namespace tool {

// Sums of at most 255 comparisons fit a byte, so compilers compare and add whole vectors of bytes.
std::uint64_t countByte(std::string_view text, char byte) {
    constexpr std::size_t stride = 32;
    constexpr std::size_t rounds = 255;
    std::uint64_t total = 0;
    std::size_t at = 0;
    while (text.size() - at >= stride) {
        unsigned char sums[stride] = {};
        const std::size_t count = std::min((text.size() - at) / stride, rounds);
        for (std::size_t round = 0; round != count; ++round, at += stride)
            for (std::size_t i = 0; i != stride; ++i)
                sums[i] = static_cast<unsigned char>(sums[i] + (text[at + i] == byte ? 1 : 0));
        for (const unsigned char sum : sums) total += sum;
    }
    return total + static_cast<std::uint64_t>(
                       std::count(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), byte));
}

std::uint64_t LineNumbers::at(std::size_t byte) {
    line_ += countByte(block_.substr(at_, byte - at_), terminator_);
    at_ = byte;
    return line_;
}

}  // namespace tool
