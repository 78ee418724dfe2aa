// Shortening and padding.
#include "tools/pattern_quote.h"

#include "tools/convert_text.h"
#include "tools/warning_report.h"

namespace tool {

// Line feeds and other controls, with the blanks around them, are one blank: they occur under free spacing.
std::string quotePart(std::u16string_view pattern, const std::optional<RE_Part_Of_Pattern>& part,
                      std::size_t most) {
    if (!part) return {};
    constexpr std::u16string_view dots = u"...";
    std::u16string shown;
    bool pending = false;
    for (const char16_t unit : pattern.substr(part->start, part->length)) {
        const bool isControl = unit < u' ' || (unit >= 0x7F && unit < 0xA0);
        if (isControl || (pending && unit == u' ')) {
            pending = true;
            continue;
        }
        if (pending && !shown.ends_with(u' ')) shown += u' ';
        pending = false;
        shown += unit;
        if (shown.size() > most) {
            shown.resize(most - dots.size());
            return toUtf8(shown.append(dots));
        }
    }
    return toUtf8(shown);
}

std::string padded(const std::string& text, std::size_t columns) {
    const std::size_t width = terminalWidth(toUtf16(text));
    return text + std::string(columns > width ? columns - width : 0, ' ');
}

}  // namespace tool
