// Growing, converting and handing over the text of the interface to the host.
#include "regexp/eval/evaluation_io.h"

#include "host/code_page.h"
#include "regexp/base/insert_text.h"

#include <algorithm>
#include <functional>

namespace {

char16_t* allocateUnits(std::size_t count) {
    return static_cast<char16_t*>(utMallocWithCheck(count * sizeof(char16_t)));
}

}  // namespace

RE_Evaluation_IO::RE_Evaluation_IO() : text(allocateUnits(128)), length(0), capacity(128) {}

RE_Evaluation_IO::RE_Evaluation_IO(const char16_t* source, std::size_t units)
    : text(allocateUnits(units + 1)), length(units), capacity(units + 1) {
    std::copy_n(source, units, text);
    text[units] = u'\0';
}

RE_Evaluation_IO::RE_Evaluation_IO(const char* source) : text(nullptr), length(0), capacity(0) {
    text = lcp_to_utf16(source, &length);
    capacity = length + 1;
}

RE_Evaluation_IO::RE_Evaluation_IO(const RE_Evaluation_IO* other)
    : RE_Evaluation_IO(other->text, other->length) {}

RE_Evaluation_IO::~RE_Evaluation_IO() {
    utFree(text);
}

void RE_Evaluation_IO::append(char unit) {
    if (length >= capacity) {
        const std::size_t larger = std::max<std::size_t>(capacity * 2, 1);
        text = static_cast<char16_t*>(utReallocWithCheck(text, larger * sizeof(char16_t)));
        capacity = larger;
    }
    text[length++] = static_cast<unsigned char>(unit);
}

// A part of this very text would move away when the text grows, so it is copied first. `std::less` orders
// pointers into different blocks, which `<` does not.
void RE_Evaluation_IO::append(const char16_t* source, std::size_t units) {
    const std::less<const char16_t*> before;
    if (!before(source, text) && before(source, text + length)) {
        const RE_Evaluation_IO part(source, units);
        append(part.text, part.length);
        return;
    }
    text = insertText(text, length, length, 0, source, units, &capacity);
    length += units;
}

bool RE_Evaluation_IO::is_equal(const RE_Evaluation_IO* other) const {
    return length == other->length && std::equal(text, text + length, other->text);
}

char* RE_Evaluation_IO::to_string() {
    if (length >= capacity) {
        const std::size_t larger = length + 1;
        text = static_cast<char16_t*>(utReallocWithCheck(text, larger * sizeof(char16_t)));
        capacity = larger;
    }
    text[length] = u'\0';
    return utf16_to_lcp_n(text, length, nullptr);
}
