// Byte order marks, and the conversion of other encodings, which is ICU's: text in those is rare, and what is searched
// and printed is UTF-8 in any case.
#include "tools/search/text_source.h"

#include "tools/usage_error.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace tool {
namespace {

struct Mark {
    std::string_view bytes;
    const char* encoding;
};

// The longer one first where one begins another.
constexpr std::array<Mark, 5> marks{{
    {{"\xFF\xFE\0\0", 4}, "UTF-32LE"},
    {{"\0\0\xFE\xFF", 4}, "UTF-32BE"},
    {{"\xEF\xBB\xBF", 3}, "UTF-8"},
    {{"\xFF\xFE", 2}, "UTF-16LE"},
    {{"\xFE\xFF", 2}, "UTF-16BE"},
}};

bool sameEncoding(const std::string& name, const char* other) {
    return ucnv_compareNames(name.c_str(), other) == 0;
}

// Whether more bytes may make a mark of these.
bool mayBecomeMark(std::string_view begun) {
    return std::ranges::any_of(marks, [&](const Mark& mark) {
        return begun.size() < mark.bytes.size() && mark.bytes.starts_with(begun);
    });
}

}  // namespace

EncodingChoice::EncodingChoice(const std::string& name) {
    if (name == "auto") return;
    name_ = name;
    UErrorCode problem = U_ZERO_ERROR;
    UConverter* const converter = ucnv_open(name.c_str(), &problem);
    if (U_FAILURE(problem)) throw UsageError("no encoding is named " + name);
    isUtf8_ = ucnv_getType(converter) == UCNV_UTF8;
    ucnv_close(converter);
}

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
    const auto mark = std::ranges::find_if(
        marks, [this](const Mark& known) { return std::string_view(held_).starts_with(known.bytes); });
    const bool hasMark =
        mark != marks.end() && (choice_.isAutomatic() || sameEncoding(choice_.name(), mark->encoding) ||
                                (choice_.isUtf8() && mark->encoding == std::string_view("UTF-8")));
    if (hasMark) used_ = mark->bytes.size();
    if (!choice_.isAutomatic() && !choice_.isUtf8()) {
        useEncoding(choice_.name());
    } else if (hasMark && mark->encoding != std::string_view("UTF-8")) {
        useEncoding(mark->encoding);
    } else {
        markSize_ = used_;
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
