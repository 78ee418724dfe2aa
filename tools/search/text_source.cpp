// The conversion of other encodings is ICU's: text in those is rare, and what is searched and printed is UTF-8 in any case.
#include "tools/search/text_source.h"

#include "tools/usage_error.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace tool {

TextSource::~TextSource() {
    if (from_ != nullptr) ucnv_close(from_);
    if (to_ != nullptr) ucnv_close(to_);
}

// A slow source is waited for only as long as its bytes may be a mark.
void TextSource::begin() {
    begun_ = true;
    std::array<char, 4> bytes;
    do {
        const std::size_t got = bytes_.read(bytes.data(), bytes.size() - held_.size());
        ended_ = got == 0;
        held_.append(bytes.data(), got);
    } while (!ended_ && mayBecomeMark(held_));
    const TextStart start = startOfText(held_, choice_);
    used_ = start.markSize;
    if (start.encoding.empty()) {
        markSize_ = used_;
    } else {
        useEncoding(start.encoding);
    }
}

void TextSource::useEncoding(const std::string& name) {
    UErrorCode problem = U_ZERO_ERROR;
    from_ = ucnv_open(name.c_str(), &problem);
    to_ = ucnv_open("UTF-8", &problem);
    if (U_FAILURE(problem)) throw UsageError("no encoding is named " + name);
    pivot_.resize(8192);
    pivotFrom_ = pivotTo_ = pivot_.data();
}

std::size_t TextSource::read(char* to, std::size_t room) {
    if (!begun_) begin();
    if (isConverted()) return readConverted(to, room);
    if (used_ < held_.size()) {
        const std::size_t count = std::min(room, held_.size() - used_);
        std::memcpy(to, held_.data() + used_, count);
        used_ += count;
        return count;
    }
    return ended_ ? 0 : bytes_.read(to, room);
}

// The converters keep what is cut by the end of the bytes, so what is given to them is used up unless there is no room.
std::size_t TextSource::readConverted(char* to, std::size_t room) {
    constexpr std::size_t pieceBytes = 32768;
    char* at = to;
    for (bool full = false; at == to && !(ended_ && used_ == held_.size() && !full);) {
        if (used_ == held_.size()) {
            held_.resize(pieceBytes);
            const std::size_t got = bytes_.read(held_.data(), held_.size());
            held_.resize(got);
            used_ = 0;
            ended_ = got == 0;
        }
        const char* source = held_.data() + used_;
        UErrorCode problem = U_ZERO_ERROR;
        ucnv_convertEx(to_, from_, &at, to + room, &source, held_.data() + held_.size(), pivot_.data(),
                       &pivotFrom_, &pivotTo_, pivot_.data() + pivot_.size(), false, ended_, &problem);
        full = problem == U_BUFFER_OVERFLOW_ERROR;
        used_ = static_cast<std::size_t>(source - held_.data());
        if (ended_ && !full) break;
    }
    return static_cast<std::size_t>(at - to);
}

}  // namespace tool
