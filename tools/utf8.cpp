// Conversion between UTF-8 and UTF-16; the decoding of single characters is ICU's. Decoding runs over whole
// files, so it writes into a buffer of sufficient size without checks and has a fast path for ASCII.
#include "tools/utf8.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace tool {
namespace {

// Most text is mostly ASCII: blocks of eight bytes without a high bit are widened without decoding. Returns
// how many bytes were; the rest, fewer than a block or with a high bit in the next one, is left to the
// decoder.
std::size_t widenAscii(const char* bytes, std::size_t count, char16_t* units) {
    constexpr std::size_t block = 8;
    std::size_t done = 0;
    for (; count - done >= block; done += block) {
        std::uint64_t chunk;
        std::memcpy(&chunk, bytes + done, block);
        if ((chunk & 0x8080808080808080u) != 0) break;
        for (std::size_t i = 0; i != block; ++i)
            units[done + i] = static_cast<unsigned char>(bytes[done + i]);
    }
    return done;
}

// One or two units, past which the returned pointer is.
char16_t* appendUnits(char16_t* out, UChar32 character) {
    if (character <= 0xFFFF) {
        *out++ = static_cast<char16_t>(character);
    } else {
        *out++ = static_cast<char16_t>(U16_LEAD(character));
        *out++ = static_cast<char16_t>(U16_TRAIL(character));
    }
    return out;
}

// `units` has room for as many units as there are bytes; no byte sequence decodes to more.
std::size_t decode(std::string_view utf8, char16_t* units) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(utf8.data());
    const std::size_t size = utf8.size();
    char16_t* out = units;
    // A stretch of ASCII, then one character by ICU; text without ASCII pays one comparison for each
    // character.
    for (std::size_t at = 0; at != size;) {
        const std::size_t widened = widenAscii(utf8.data() + at, size - at, out);
        at += widened;
        out += widened;
        if (at == size) break;
        UChar32 character;
        U8_NEXT_OR_FFFD(bytes, at, size, character);
        out = appendUnits(out, character);
    }
    return static_cast<std::size_t>(out - units);
}

// `character` is no surrogate: nextCharacter has replaced those.
void appendCharacter(std::string& out, UChar32 character) {
    std::array<std::uint8_t, U8_MAX_LENGTH> bytes;
    std::size_t length = 0;
    U8_APPEND_UNSAFE(bytes.data(), length, character);
    out.append(reinterpret_cast<const char*>(bytes.data()), length);
}

// Moves `at` past the character. Half of a pair without its other half has no UTF-8 form.
UChar32 nextCharacter(std::u16string_view text, std::size_t& at) {
    const std::size_t size = text.size();
    UChar32 character;
    U16_NEXT(text.data(), at, size, character);
    return U_IS_SURROGATE(character) ? 0xFFFD : character;
}

// The escapes that patterns know too; empty for other characters.
std::string_view shortEscape(UChar32 character) {
    switch (character) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        case '\\':
            return "\\\\";
        default:
            return {};
    }
}

// The C0 controls, DEL and the C1 controls are escaped by number: a terminal would act on them.
void appendPrintable(std::string& out, UChar32 character) {
    const std::string_view escape = shortEscape(character);
    if (!escape.empty()) {
        out += escape;
    } else if (character < 0x20 || (character >= 0x7F && character < 0xA0)) {
        std::array<char, 8> text;
        std::snprintf(text.data(), text.size(), "\\x%02X", static_cast<unsigned>(character));
        out += text.data();
    } else {
        appendCharacter(out, character);
    }
}

}  // namespace

Utf16Text::Utf16Text(std::string_view utf8)
    : units_(std::make_unique_for_overwrite<char16_t[]>(utf8.size() + 1)),
      length_(decode(utf8, units_.get())) {}

// Every other unit has one source only: where there is no U+FFFD nothing was replaced, and the comparison,
// which costs a conversion, is spared.
bool isConversionOf(std::u16string_view text, std::string_view utf8) {
    return text.find(u'\uFFFD') == std::u16string_view::npos || toUtf8(text) == utf8;
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

std::u16string toUtf16(std::string_view utf8) {
    return std::u16string(Utf16Text(utf8).view());
}

void appendUtf8(std::string& out, std::u16string_view text) {
    for (std::size_t at = 0; at != text.size();) {
        // Most text is ASCII, of which a unit is a byte.
        if (text[at] < 0x80) {
            out += static_cast<char>(text[at++]);
        } else {
            appendCharacter(out, nextCharacter(text, at));
        }
    }
}

std::string toUtf8(std::u16string_view text) {
    std::string out;
    appendUtf8(out, text);
    return out;
}

std::string toPrintableUtf8(std::u16string_view text) {
    std::string out;
    for (std::size_t at = 0; at != text.size();) appendPrintable(out, nextCharacter(text, at));
    return out;
}

}  // namespace tool
