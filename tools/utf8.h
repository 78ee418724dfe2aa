// Conversion between the UTF-8 of files and terminals and the UTF-16 that the engine works on. All functions
// accept any input; what cannot be converted becomes U+FFFD.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace tool {

// Text of the size of a whole file. The units are never null, even for an empty text, since the engine takes
// a null subject for "nothing to search".
class Utf16Text {
public:
    // Every ill-formed byte sequence becomes U+FFFD, so any file can be searched.
    explicit Utf16Text(std::string_view utf8);

    std::u16string_view view() const { return {units_.get(), length_}; }

private:
    std::unique_ptr<char16_t[]> units_;
    std::size_t length_;
};

// Whether the conversion of the bytes to these units lost nothing: converted back, they are the same bytes.
bool isConversionOf(std::u16string_view text, std::string_view utf8);

// Whether there is half of a surrogate pair in the text, which has no UTF-8 form.
bool hasLoneSurrogate(std::u16string_view text);

// For short texts; a file is converted into a Utf16Text.
std::u16string toUtf16(std::string_view utf8);

// A lone surrogate, which has no UTF-8 form, becomes U+FFFD.
void appendUtf8(std::string& out, std::u16string_view text);
std::string toUtf8(std::u16string_view text);

// On one line: control characters and the backslash are written as escapes.
std::string toPrintableUtf8(std::u16string_view text);

}  // namespace tool
