// Warnings as people read them. The caret has to stand under the right glyph, so columns of the terminal are
// counted here, not code units.
#include "tools/warning_report.h"

#include "tools/utf8.h"
#include "tools/warning_text.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <iostream>

namespace tool {
namespace {

constexpr std::string_view margin = "    ";
constexpr std::size_t mostShown = 20;

bool isCombining(UChar32 character) {
    return (U_GET_GC_MASK(character) & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK)) != 0;
}

std::size_t terminalWidth(UChar32 character) {
    if (isCombining(character)) return 0;
    const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

// Blanks as wide as `text`; a tab stays a tab, since its width depends on where it stands.
std::string paddingFor(std::u16string_view text) {
    std::string padding;
    for (std::size_t at = 0; at != text.size();) {
        const std::size_t size = text.size();
        UChar32 character;
        U16_NEXT(text.data(), at, size, character);
        if (character == '\t') {
            padding += '\t';
        } else {
            padding.append(terminalWidth(character), ' ');
        }
    }
    return padding;
}

// Other control characters would move the cursor, so each is shown as one replacement character.
std::u16string withoutControls(std::u16string_view text) {
    std::u16string shown(text);
    std::ranges::replace_if(
        shown, [](char16_t unit) { return u_iscntrl(unit) && unit != u'\t'; }, u'\uFFFD');
    return shown;
}

std::string placeText(std::u16string_view pattern, const PatternPlace& place) {
    std::string text = "column " + std::to_string(place.column);
    if (pattern.find(u'\n') != std::u16string_view::npos)
        text = "line " + std::to_string(place.line) + ", " + text;
    return text;
}

}  // namespace

PatternPlace locate(std::u16string_view pattern, std::size_t position) {
    const std::u16string_view before = pattern.substr(0, position);
    const std::size_t lineFeed = before.rfind(u'\n');
    const std::size_t lineBegin = lineFeed == std::u16string_view::npos ? 0 : lineFeed + 1;
    const std::size_t lineEnd = std::min(pattern.find(u'\n', position), pattern.size());
    const auto lineFeeds = static_cast<std::size_t>(std::ranges::count(before, u'\n'));
    return {lineFeeds + 1, position - lineBegin + 1, pattern.substr(lineBegin, lineEnd - lineBegin)};
}

std::string describePlace(std::u16string_view pattern, std::size_t position, const std::string& heading,
                          std::string_view sentence) {
    const PatternPlace place = locate(pattern, position);
    const std::u16string shown = withoutControls(place.lineText);
    std::string text = heading + " at " + placeText(pattern, place) + ": ";
    text += sentence;
    text += '\n';
    text += margin;
    appendUtf8(text, shown);
    text += '\n';
    text += margin;
    text += paddingFor(std::u16string_view(shown).substr(0, place.column - 1));
    return text + '^';
}

std::string describeWarning(std::u16string_view pattern, const PatternWarning& warning) {
    const auto number = static_cast<unsigned>(warning.number);
    return describePlace(pattern, warning.position, "warning " + std::to_string(number),
                         warningSentence(number)) +
           '\n';
}

void printWarnings(std::u16string_view pattern, const std::vector<PatternWarning>& warnings,
                   std::string_view subject) {
    std::string heading = "cvregexp: ";
    if (!subject.empty()) heading.append(subject).append(": ");
    const std::size_t shown = std::min(warnings.size(), mostShown);
    for (std::size_t i = 0; i != shown; ++i) std::cerr << heading << describeWarning(pattern, warnings[i]);
    if (shown != warnings.size()) std::cerr << heading << warnings.size() - shown << " more warnings\n";
}

}  // namespace tool
