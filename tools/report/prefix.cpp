// What is in front of a line of output. The order is that of the usual search tools, which editors read.
#include "tools/report/prefix.h"

#include <unistd.h>

#include <array>
#include <climits>
#include <cstdio>
#include <filesystem>

namespace tool {
namespace {

// Only what cannot be mistaken in an address stays as it is.
void appendAddress(std::string& out, const std::string& path) {
    std::array<char, HOST_NAME_MAX + 1> host{};
    if (::gethostname(host.data(), host.size() - 1) != 0) host.front() = '\0';
    out += "file://";
    out += host.data();
    std::error_code problem;
    const std::string whole = std::filesystem::absolute(path, problem).lexically_normal().string();
    for (const char byte : whole) {
        const bool plain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                           (byte >= '0' && byte <= '9') || byte == '/' || byte == '.' || byte == '-' ||
                           byte == '_' || byte == '~';
        if (plain) {
            out += byte;
        } else {
            std::array<char, 4> escaped;
            std::snprintf(escaped.data(), escaped.size(), "%%%02X", static_cast<unsigned char>(byte));
            out += escaped.data();
        }
    }
}

void appendNumber(std::string& out, const ReportStyle& style, std::uint64_t number, char separator) {
    appendColored(out, style.color, numberColor, std::to_string(number));
    appendColored(out, style.color, separatorColor, {&separator, 1});
}

}  // namespace

void appendColored(std::string& out, bool color, std::string_view sequence, std::string_view text) {
    if (color) out += sequence;
    out += text;
    if (color) out += colorOff;
}

void appendName(std::string& out, const ReportStyle& style, const TextInfo& text, std::uint64_t line) {
    const bool link = style.hyperlinks && !text.path.empty();
    if (link) {
        out += "\033]8;;";
        appendAddress(out, text.path);
        if (line != 0) out += "#" + std::to_string(line);
        out += "\033\\";
    }
    appendColored(out, style.color, nameColor, text.label);
    if (link) out += "\033]8;;\033\\";
}

void appendPrefix(std::string& out, const ReportStyle& style, const TextInfo& text, const LinePlace& place,
                  char separator) {
    if (style.fileNames) {
        appendName(out, style, text, place.line);
        if (style.nulAfterName) {
            out += '\0';
        } else {
            appendColored(out, style.color, separatorColor, {&separator, 1});
        }
    }
    if (style.lineNumbers) appendNumber(out, style, place.line, separator);
    if (style.columns && place.column != 0) appendNumber(out, style, place.column, separator);
    if (style.byteOffsets) appendNumber(out, style, place.byte, separator);
}

// A count belongs to no line.
void appendCount(std::string& out, const ReportStyle& style, const TextInfo& text, std::uint64_t count) {
    ReportStyle plain = style;
    plain.lineNumbers = plain.columns = plain.byteOffsets = false;
    appendPrefix(out, plain, text, {}, ':');
    out += std::to_string(count) + '\n';
}

std::string withoutControls(std::string_view bytes) {
    std::string shown;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if ((value >= 0x20 && value != 0x7F) || byte == '\t') {
            shown += byte;
        } else {
            std::array<char, 5> escaped;
            std::snprintf(escaped.data(), escaped.size(), "\\x%02X", value);
            shown += escaped.data();
        }
    }
    return shown;
}

}  // namespace tool
