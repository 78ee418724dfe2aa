// One large file as parts that several threads search.
#pragma once

#include "tools/search/byte_source.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace tool {

// Whole lines of a file, in bytes.
struct FilePart {
    std::uint64_t begin;
    std::uint64_t end;
    std::uint64_t firstLine = 1;  // its number, from 1; where lines are counted
};

// Cuts a file after line ends, into parts of about so many bytes, and calls `found` with one after the other until it
// returns false. Where a NUL makes the file a binary one, the rest from the part that holds the first of them on is one part,
// as there the meaning of what follows depends on what came before; with `nulIsText` a NUL is a byte like any other.
class FileParts {
public:
    FileParts(const FileSource& file, char terminator, bool nulIsText, bool countsLines)
        : file_(file), terminator_(terminator), nulIsText_(nulIsText), countsLines_(countsLines) {}

    // Reads the file, each part before `found` is called with it. Throws what the file throws.
    void forEach(std::uint64_t partBytes, const std::function<bool(const FilePart&)>& found);

private:
    // Counts the lines of the part, where that is wanted. False when it has a NUL that makes it binary.
    bool isText(const FilePart& part);
    // The first line end at or after the place.
    std::uint64_t lineEndFrom(std::uint64_t place);

    static constexpr std::size_t readBytes = std::size_t{1} << 20;

    const FileSource& file_;
    char terminator_;
    bool nulIsText_;
    bool countsLines_;
    std::uint64_t lines_ = 0;  // before the next part
    std::vector<char> room_ = std::vector<char>(readBytes);
};

}  // namespace tool
