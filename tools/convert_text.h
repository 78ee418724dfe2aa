// Short texts between the UTF-8 of files and terminals and the UTF-16 that the engine works on, by the converters of the
// library. All functions accept any input; what cannot be converted becomes U+FFFD. A whole file is an `Input`.
#pragma once

#include <string>
#include <string_view>

namespace tool {

std::u16string toUtf16(std::string_view utf8);

void appendUtf8(std::string& out, std::u16string_view text);
std::string toUtf8(std::u16string_view text);

// On one line: control characters and the backslash are written as escapes.
std::string toPrintableUtf8(std::u16string_view text);

// Whether there is half of a surrogate pair in the text, which no encoding of characters has a form for.
bool hasLoneSurrogate(std::u16string_view text);

}  // namespace tool
