// How files are encoded: what the user says, and what a byte order mark says.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tool {

// How files are read. "auto": as their byte order mark says, UTF-8 without one. "utf-8" and others by their names:
// that one, and only a byte order mark of the same encoding is dropped. UsageError for a name that nobody knows.
class EncodingChoice {
public:
    EncodingChoice() = default;
    explicit EncodingChoice(const std::string& name);

    bool isAutomatic() const { return name_.empty(); }
    bool isUtf8() const { return isUtf8_; }
    const std::string& name() const { return name_; }

private:
    std::string name_;
    bool isUtf8_ = false;
};

// What a text begins with, and how the rest is encoded.
struct TextStart {
    std::size_t markSize = 0;  // bytes of the byte order mark
    std::string encoding;      // a name for ICU; empty: UTF-8
};

// Of a text that begins with these bytes, which are four or all of it.
TextStart startOfText(std::string_view bytes, const EncodingChoice& choice);
// Whether more bytes may make a mark of these.
bool mayBecomeMark(std::string_view begun);

}  // namespace tool
