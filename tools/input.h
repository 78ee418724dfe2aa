// The text to search: a file or standard input, read once and converted once. The whole text is in memory,
// because patterns see a file as one text and matches may span lines.
#pragma once

#include "regexp/text/text.h"

#include <memory>
#include <string>
#include <string_view>

namespace tool {

class FileBytes;

// A whole text with what is said about it.
class Input {
public:
    // "-" stands for standard input. Throws std::system_error when the file cannot be read, and Interrupted when
    // the user breaks off the reading of a slow source.
    explicit Input(const std::string& fileName);
    ~Input();
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // Without the byte order mark. Never null: the engine takes a null subject for "nothing to search". Every
    // ill-formed byte sequence becomes U+FFFD, so any file can be searched.
    std::u16string_view text() const { return text_.known(); }

private:
    std::unique_ptr<const FileBytes> bytes_;  // which the text refers to
    RE_Text text_;
};

// The whole content of a file, not converted, but without a byte order mark.
std::string readBytes(const std::string& fileName);

// The same with the byte order mark, if there is one.
std::string readAllBytes(const std::string& fileName);

// What a text file may start with to say that it is UTF-8.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

}  // namespace tool
