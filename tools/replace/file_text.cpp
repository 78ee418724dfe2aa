// UTF-8 is converted by the library, other encodings by ICU.
#include "tools/replace/file_text.h"

#include "tools/convert_text.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>

namespace tool {
namespace {

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

// Names were checked when the options were read.
Converter openConverter(const std::string& encoding) {
    UErrorCode problem = U_ZERO_ERROR;
    Converter converter(ucnv_open(encoding.c_str(), &problem));
    if (U_FAILURE(problem)) throw std::runtime_error("cannot convert " + encoding);
    return converter;
}

// Calls `step` with room for a piece until all is converted; it returns the end of what it has written.
template <class Text, class Step>
void appendPieces(Text& out, Step step) {
    std::array<typename Text::value_type, 8192> room;
    for (UErrorCode problem = U_BUFFER_OVERFLOW_ERROR; problem == U_BUFFER_OVERFLOW_ERROR;) {
        problem = U_ZERO_ERROR;
        auto* const end = step(room.data(), room.data() + room.size(), problem);
        out.append(room.data(), static_cast<std::size_t>(end - room.data()));
        if (U_FAILURE(problem) && problem != U_BUFFER_OVERFLOW_ERROR)
            throw std::runtime_error(u_errorName(problem));
    }
}

std::u16string decode(std::string_view bytes, const std::string& encoding) {
    const Converter converter = openConverter(encoding);
    const char* from = bytes.data();
    const char* const end = from + bytes.size();
    std::u16string text;
    appendPieces(text, [&](char16_t* to, const char16_t* limit, UErrorCode& problem) {
        ucnv_toUnicode(converter.get(), &to, limit, &from, end, nullptr, true, &problem);
        return to;
    });
    return text;
}

std::string encode(std::u16string_view text, const std::string& encoding) {
    const Converter converter = openConverter(encoding);
    const char16_t* from = text.data();
    const char16_t* const end = from + text.size();
    std::string bytes;
    appendPieces(bytes, [&](char* to, const char* limit, UErrorCode& problem) {
        ucnv_fromUnicode(converter.get(), &to, limit, &from, end, nullptr, true, &problem);
        return to;
    });
    return bytes;
}

}  // namespace

FileText::FileText(std::string bytes, const EncodingChoice& choice)
    : bytes_(std::move(bytes)), start_(startOfText(bytes_, choice)) {
    const std::string_view content = std::string_view(bytes_).substr(start_.markSize);
    if (start_.encoding.empty()) {
        utf8_.useUtf8(content);
        utf8_.convert(RE_Text::all);
    } else {
        converted_ = decode(content, start_.encoding);
    }
}

// In UTF-8 every unit but U+FFFD has one source only: without one nothing was replaced, and the comparison, which costs
// a conversion, is spared.
bool FileText::isExact() const {
    if (start_.encoding.empty() && text().find(u'\uFFFD') == std::u16string_view::npos) return true;
    return encoded(text()).bytes == bytes_;
}

EncodedText FileText::encoded(std::u16string_view changed) const {
    EncodedText result{bytes_.substr(0, start_.markSize), true};
    if (start_.encoding.empty()) {
        appendUtf8(result.bytes, changed);
        result.isExact = !hasLoneSurrogate(changed);
    } else {
        const std::string bytes = encode(changed, start_.encoding);
        result.isExact = decode(bytes, start_.encoding) == changed;
        result.bytes += bytes;
    }
    return result;
}

}  // namespace tool
