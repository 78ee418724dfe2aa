// A file to replace in: its bytes, its text, and the way back from a changed text to bytes.
#pragma once

#include "regexp/text/text.h"
#include "tools/search/encoding.h"

#include <string>
#include <string_view>

namespace tool {

// Bytes of a text, and whether they say all of it: what the encoding has no form for is replaced.
struct EncodedText {
    std::string bytes;
    bool isExact = true;
};

class FileText {
public:
    // What is ill-formed becomes U+FFFD.
    FileText(std::string bytes, const EncodingChoice& choice);
    FileText(const FileText&) = delete;
    FileText& operator=(const FileText&) = delete;

    const std::string& bytes() const { return bytes_; }
    // Without the byte order mark. Never null.
    std::u16string_view text() const {
        return start_.encoding.empty() ? utf8_.known() : std::u16string_view(converted_);
    }
    // Whether the text, written back unchanged, gives the same bytes.
    bool isExact() const;
    bool isBinary() const { return text().find(u'\0') != std::u16string_view::npos; }
    // For messages.
    std::string encoding() const { return start_.encoding.empty() ? "UTF-8" : start_.encoding; }

    // As bytes of the same encoding, after the byte order mark if the file has one.
    EncodedText encoded(std::u16string_view changed) const;

private:
    std::string bytes_;
    TextStart start_;
    RE_Text utf8_;  // of the bytes, where they are UTF-8
    std::u16string converted_;
};

}  // namespace tool
