// UTF-8 and the escapes of labels.
#include "regexp/nodes/label_text.h"

#include <cstdint>

namespace {

/// As few digits as the number needs, at most four: for single units.
void appendHex(std::string& out, std::uint32_t value) {
    static const char digits[] = "0123456789ABCDEF";
    out += "\\x{";
    for (int shift = 12; shift >= 0; shift -= 4) {
        if ((value >> shift) != 0 || shift == 0) {
            out += digits[(value >> shift) & 15];
        }
    }
    out += '}';
}

void appendUtf8(std::string& out, std::uint32_t point) {
    const auto tail = [&](int shift) { out += static_cast<char>(0x80 | ((point >> shift) & 0x3F)); };
    if (point < 0x80) {
        out += static_cast<char>(point);
    } else if (point < 0x800) {
        out += static_cast<char>(0xC0 | (point >> 6));
        tail(0);
    } else if (point < 0x10000) {
        out += static_cast<char>(0xE0 | (point >> 12));
        tail(6);
        tail(0);
    } else {
        out += static_cast<char>(0xF0 | (point >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

// Controls, separators of lines, marks of writing direction, surrogates and what no XML file may hold.
bool hasNoGlyph(std::uint32_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || (unit >= 0x200B && unit < 0x2010) ||
           (unit >= 0x2028 && unit < 0x202F) || (unit >= 0x2060 && unit < 0x2070) ||
           (unit >= 0xD800 && unit < 0xE000) || unit == 0xFEFF || unit >= 0xFFFE;
}

}  // namespace

std::string labelText(const char16_t* text, std::size_t length) {
    std::string out;
    for (std::size_t i = 0; i < length; ++i) {
        const std::uint32_t unit = text[i];
        // A surrogate pair is one character; a surrogate alone has no encoding and is written as a number.
        const bool pair = unit >= 0xD800 && unit < 0xDC00 && i + 1 < length && text[i + 1] >= 0xDC00 &&
                          text[i + 1] < 0xE000;
        if (pair) {
            appendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (text[++i] - 0xDC00u));
        } else if (hasNoGlyph(unit)) {
            appendHex(out, unit);
        } else {
            appendUtf8(out, unit);
        }
    }
    return out;
}

std::string shortened(std::string_view text, std::size_t longest) {
    if (text.size() <= longest) {
        return std::string(text);
    }
    // Bytes 10xxxxxx continue a character: goes back to the byte that begins it.
    const auto begunBefore = [text](std::size_t at) {
        while ((text[at] & 0xC0) == 0x80) {
            --at;
        }
        return at;
    };
    const std::string head(text.substr(0, begunBefore(longest / 2)));
    return head + " ... " + std::string(text.substr(begunBefore(text.size() - longest / 2)));
}

// Graphviz reads at most 16384 bytes between quotes, and a byte may need five.
std::string quotedLabel(std::string_view text) {
    constexpr std::size_t longest = 3000;
    std::string out = "\"";
    for (const char c : shortened(text, longest)) {
        if (c == '"' || c == '\\') {
            out += '\\';
        }
        out += c;
        if (c == '&') {  // would begin an entity
            out += "amp;";
        }
    }
    return out + '"';
}

void appendGraphNode(std::string& out, std::size_t number, std::string_view label,
                     std::string_view attributes) {
    out += "  n" + std::to_string(number) + " [label=" + quotedLabel(label);
    out += attributes;
    out += "];\n";
}
