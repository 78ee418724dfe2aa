// The places of the cuts. To look for a NUL and to count lines costs a small part of a search.
#include "tools/search/file_parts.h"

#include "tools/report/line_numbers.h"

#include <algorithm>
#include <cstring>

namespace tool {

void FileParts::forEach(std::uint64_t partBytes, const std::function<bool(const FilePart&)>& found) {
    const std::uint64_t size = file_.size();
    for (std::uint64_t begin = 0; begin < size;) {
        std::uint64_t end = size - begin <= partBytes ? size : lineEndFrom(begin + partBytes);
        FilePart part{begin, end, lines_ + 1};
        if ((countsLines_ || !nulIsText_) && !isText(part)) part.end = end = size;
        if (!found(part)) return;
        begin = end;
    }
}

bool FileParts::isText(const FilePart& part) {
    PartSource bytes(file_, part.begin, part.end);
    for (std::size_t got; (got = bytes.read(room_.data(), room_.size())) != 0;) {
        if (!nulIsText_ && std::memchr(room_.data(), '\0', got) != nullptr) return false;
        if (countsLines_) lines_ += countByte({room_.data(), got}, terminator_);
    }
    return true;
}

std::uint64_t FileParts::lineEndFrom(std::uint64_t place) {
    constexpr std::size_t usualLine = 4096;
    PartSource bytes(file_, place, file_.size());
    for (std::size_t got; (got = bytes.read(room_.data(), usualLine)) != 0; place += got) {
        const void* const end = std::memchr(room_.data(), terminator_, got);
        if (end != nullptr)
            return place + static_cast<std::uint64_t>(static_cast<const char*>(end) - room_.data()) + 1;
    }
    return place;
}

}  // namespace tool
