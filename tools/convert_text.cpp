// Conversions of short texts, through small buffers.
#include "tools/convert_text.h"

#include "regexp/text/conversion.h"
#include "regexp/text/text_search.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace tool {
namespace {

// The C0 controls, DEL and the C1 controls: a terminal would act on them. The backslash begins the escapes.
bool needsEscape(char16_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == u'\\';
}

// Patterns know these escapes, too.
void appendEscape(std::string& out, char16_t unit) {
    switch (unit) {
        case u'\n':
            out += "\\n";
            return;
        case u'\r':
            out += "\\r";
            return;
        case u'\t':
            out += "\\t";
            return;
        case u'\\':
            out += "\\\\";
            return;
        default:
            break;
    }
    std::array<char, 8> text;
    std::snprintf(text.data(), text.size(), "\\x%02X", static_cast<unsigned>(unit));
    out += text.data();
}

}  // namespace

std::u16string toUtf16(std::string_view utf8) {
    std::u16string text;
    std::array<char16_t, 1024> room;
    while (!utf8.empty()) {
        const RE_Conversion done = reToUtf16(RE_Encoding::utf8, utf8.data(), utf8.data() + utf8.size(), true,
                                             room.data(), room.data() + room.size());
        text.append(room.data(), done.written);
        utf8.remove_prefix(done.read);
    }
    return text;
}

void appendUtf8(std::string& out, std::u16string_view text) {
    reAppendEncoded(out, RE_Encoding::utf8, text);
}

std::string toUtf8(std::u16string_view text) {
    std::string out;
    appendUtf8(out, text);
    return out;
}

std::string toPrintableUtf8(std::u16string_view text) {
    std::string out;
    while (!text.empty()) {
        const auto escaped = std::ranges::find_if(text, needsEscape);
        const auto plain = static_cast<std::size_t>(escaped - text.begin());
        appendUtf8(out, text.substr(0, plain));
        if (escaped != text.end()) appendEscape(out, *escaped);
        text.remove_prefix(std::min(plain + 1, text.size()));
    }
    return out;
}

// U16_NEXT joins proper pairs, so a surrogate that it returns has no partner.
bool hasLoneSurrogate(std::u16string_view text) {
    for (std::size_t at = 0; at != text.size();) {
        const std::size_t size = text.size();
        UChar32 character;
        U16_NEXT(text.data(), at, size, character);
        if (U_IS_SURROGATE(character)) return true;
    }
    return false;
}

}  // namespace tool
