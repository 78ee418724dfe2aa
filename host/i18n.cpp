// Standard strings over the local code page conversion. Each call makes one copy more than the functions of
// host/code_page.h, into the string; callers with large texts use those.

#include "host/i18n.h"

#include <memory>

#include "host/allocation.h"
#include "host/code_page.h"

namespace {

// Converted text is a block of the host's allocator, which `delete` and `free` must not be given.
struct Free {
    void operator()(void* block) const { utFree(block); }
};

}  // namespace

std::u16string to_ustring(const char* text) {
    size_t length = 0;
    const std::unique_ptr<char16_t, Free> converted(lcp_to_utf16(text, &length));
    return {converted.get(), length};
}

std::string to_string(const std::u16string& text) {
    size_t length = 0;
    const std::unique_ptr<char, Free> converted(utf16_to_lcp_n(text.data(), text.size(), &length));
    return {converted.get(), length};
}
