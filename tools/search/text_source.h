// A source of UTF-8, whatever the encoding of the file is.
#pragma once

#include "tools/search/byte_source.h"
#include "tools/search/encoding.h"

#include <memory>
#include <string>
#include <vector>

struct UConverter;

namespace tool {

// Drops the byte order mark and converts to UTF-8 where the text is something else; bytes of UTF-8 pass as they are,
// ill-formed or not.
class TextSource : public ByteSource {
public:
    // Refers to both. Bytes that do not begin the text are UTF-8 and have no mark.
    TextSource(ByteSource& bytes, const EncodingChoice& choice, bool beginsText = true)
        : bytes_(bytes), choice_(choice), begun_(!beginsText) {}
    ~TextSource() override;
    TextSource(const TextSource&) = delete;
    TextSource& operator=(const TextSource&) = delete;

    std::size_t read(char* to, std::size_t room) override;
    // Of the bytes in front of the text; known once something was read. 0 for a converted text.
    std::size_t markSize() const { return markSize_; }
    bool isConverted() const { return from_ != nullptr; }

private:
    void begin();
    void useEncoding(const std::string& name);
    std::size_t readConverted(char* to, std::size_t room);

    ByteSource& bytes_;
    const EncodingChoice& choice_;
    bool begun_;
    bool ended_ = false;
    std::size_t markSize_ = 0;
    std::string held_;  // read and not handed out, or not converted
    std::size_t used_ = 0;
    UConverter* from_ = nullptr;
    UConverter* to_ = nullptr;
    std::vector<char16_t> pivot_;
    char16_t* pivotFrom_ = nullptr;
    char16_t* pivotTo_ = nullptr;
};

}  // namespace tool
