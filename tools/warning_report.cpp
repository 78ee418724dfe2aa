// Warnings as people read them. The caret has to be under the right glyph, so columns of the terminal are
// counted here, not code units: a combining character takes none, an East Asian wide one two.
#include "tools/warning_report.h"

#include "tools/convert_text.h"

#include "regexp/eval/warning_text.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <unistd.h>

#include <algorithm>
#include <iostream>

namespace tool {
namespace {

constexpr std::string_view margin = "    ";
// Of a text's warnings: a text that is no pattern at all may have one for each of its units.
constexpr std::size_t mostShown = 20;

// Marks and format characters, which take no column of their own.
bool isCombining(UChar32 character) {
    return (U_GET_GC_MASK(character) & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK)) != 0;
}

// In columns. An ambiguous width counts as one, as in most terminals.
std::size_t characterWidth(UChar32 character) {
    if (isCombining(character)) return 0;
    const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

// Blanks as wide as `text`; a tab stays a tab, since its width depends on its column.
std::string paddingFor(std::u16string_view text) {
    std::string padding;
    for (std::size_t at = 0; at != text.size();) {
        const std::size_t size = text.size();
        UChar32 character;
        U16_NEXT(text.data(), at, size, character);
        if (character == '\t') {
            padding += '\t';
        } else {
            padding.append(characterWidth(character), ' ');
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

// A caret under the first unit of the part that the warning is about, and a wave under the others on this
// line.
std::string underline(std::u16string_view line, std::size_t begin, std::size_t length) {
    std::string text = paddingFor(line.substr(0, begin)) + '^';
    const std::size_t width = terminalWidth(line.substr(begin, length));
    // The caret takes the place of the first column.
    text.append(width > 1 ? width - 1 : 0, '~');
    return text;
}

// Lines are mentioned only where there are several.
std::string placeText(std::u16string_view pattern, const PatternPlace& place) {
    std::string text = "column " + std::to_string(place.column);
    if (pattern.find(u'\n') != std::u16string_view::npos)
        text = "line " + std::to_string(place.line) + ", " + text;
    return text;
}

}  // namespace

// Of a piece without tabs, whose width would depend on where it begins.
std::size_t terminalWidth(std::u16string_view text) {
    std::size_t width = 0;
    for (std::size_t at = 0; at != text.size();) {
        const std::size_t size = text.size();
        UChar32 character;
        U16_NEXT(text.data(), at, size, character);
        width += characterWidth(character);
    }
    return width;
}

// The line of the position, found by the line feeds around it. Linear in the pattern.
PatternPlace locate(std::u16string_view pattern, std::size_t position) {
    const std::u16string_view before = pattern.substr(0, position);
    const std::size_t lineFeed = before.rfind(u'\n');
    const std::size_t lineBegin = lineFeed == std::u16string_view::npos ? 0 : lineFeed + 1;
    const std::size_t lineEnd = std::min(pattern.find(u'\n', position), pattern.size());
    const auto lineFeeds = static_cast<std::size_t>(std::ranges::count(before, u'\n'));
    return {lineFeeds + 1, position - lineBegin + 1, pattern.substr(lineBegin, lineEnd - lineBegin)};
}

namespace {

// What is wrong and where, the line that it is in, and the margin of the line below.
std::string quoteLine(std::u16string_view pattern, const PatternPlace& place, const std::string& heading,
                      std::string_view sentence) {
    std::string text = heading + " at " + placeText(pattern, place) + ": ";
    text += sentence;
    text += '\n';
    text += margin;
    appendUtf8(text, withoutControls(place.lineText));
    text += '\n';
    return text += margin;
}

}  // namespace

// For messages that are no warnings, such as errors of scripts.
std::string describePlace(std::u16string_view pattern, std::size_t position, const std::string& heading,
                          std::string_view sentence) {
    const PatternPlace place = locate(pattern, position);
    const std::u16string shown = withoutControls(place.lineText);
    return quoteLine(pattern, place, heading, sentence) + underline(shown, place.column - 1, 0);
}

std::string describeWarning(std::u16string_view pattern, const PatternWarning& warning) {
    const RE_Warning_Span span = locateWarning(warning.number, pattern, warning.position);
    const PatternPlace place = locate(pattern, span.start);
    const std::u16string shown = withoutControls(place.lineText);
    const std::string heading = "warning " + std::to_string(static_cast<unsigned>(warning.number));
    std::string text = quoteLine(pattern, place, heading, describe(warning.number).sentence);
    // Within the line, in code units.
    const std::size_t begin = place.column - 1;
    text += underline(shown, begin, span.length);
    text += '\n';
    // A part that reaches over a line feed is not shown corrected: the line alone would mislead.
    if (span.correction && begin + span.length <= shown.size()) {
        std::u16string corrected = shown;
        corrected.replace(begin, span.length, *span.correction);
        text += margin;
        text += "perhaps: ";
        appendUtf8(text, corrected);
        text += '\n';
    }
    return text;
}

std::string describeHint(std::u16string_view pattern, const RE_Hint& hint) {
    std::string text = describePlace(pattern, hint.start, "hint", hint.sentence);
    text += '\n';
    if (hint.correction) {
        text += margin;
        text += "perhaps: ";
        appendUtf8(text, withoutControls(reFollowHints(pattern, {hint})));
        text += '\n';
    }
    return text;
}

void printHints(std::u16string_view pattern, const std::vector<RE_Hint>& hints) {
    if (::isatty(STDERR_FILENO) == 0) return;
    for (const RE_Hint& hint : hints) std::cerr << "cvregexp: " << describeHint(pattern, hint);
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
