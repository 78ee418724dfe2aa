// Classes, escapes and sets of the reference parser.
#include "tests/support/reference_units.h"

#include <algorithm>

namespace corvane_tests::reference {
namespace {

size_t digitValue(char16_t unit) {
    const std::u16string_view digits = u"0123456789abcdefABCDEF";
    const size_t place = digits.find(unit);
    return place < 16 || place == digits.npos ? place : place - 6;
}

std::u16string digits(Reader& reader, size_t base, size_t most) {
    std::u16string taken;
    for (Reader ahead = reader; taken.size() < most && !ahead.done(); reader = ahead) {
        const char16_t unit = ahead.take();
        if (digitValue(unit) >= base) {
            break;
        }
        taken += unit;
    }
    return taken;
}

// Nothing unless these are digits of a character.
std::optional<char16_t> number(std::u16string_view digits, size_t base) {
    size_t value = 0;
    for (const char16_t digit : digits) {
        if (digitValue(digit) >= base) {
            return std::nullopt;
        }
        value = std::min<size_t>(value * base + digitValue(digit), 0x110000);
    }
    if (value > 0x7F && value < 0x110000) {
        throw Unreadable();
    }
    return digits.empty() || value > 0x7F ? std::nullopt : std::optional(static_cast<char16_t>(value));
}

std::optional<char16_t> numberEscape(Reader& reader, size_t base) {
    Reader ahead = reader;
    if (reader.sees(u"{")) {
        const std::optional<char16_t> value = number(ahead.braced().value_or(u""), base);
        reader = value ? ahead : reader;
        return value;
    }
    return base == 16 ? number(digits(reader, 16, 2), 16) : std::nullopt;
}

void readSetItem(Reader& reader, std::vector<Range>& ranges) {
    char16_t low = reader.take();
    if (low == u'\\') {
        const char16_t letter = reader.take();
        const std::vector<Range> extra = classRanges(letter);
        if (!extra.empty()) {
            ranges.insert(ranges.end(), extra.begin(), extra.end());
            return;
        }
        low = escapedUnit(reader, letter).value_or(letter);
    }
    char16_t high = low;
    if (reader.takes(u"-")) {
        high = reader.take();
        if (high == u']' || high == u'\\') {
            throw Unreadable();
        }
    }
    ranges.push_back({std::min(low, high), std::max(low, high)});
}

}  // namespace

std::vector<Range> classRanges(char16_t letter) {
    switch (letter) {
        case u'd':
            return {{u'0', u'9'}};
        case u's':
            return {{9, 13}, {28, 32}};
        case u'w':
            return {{u'0', u'9'}, {u'A', u'Z'}, {u'_', u'_'}, {u'a', u'z'}};
        case u'D':
            return {{0, u'0' - 1}, {u'9' + 1, 0xFFFF}};
        case u'S':
            return {{0, 8}, {14, 27}, {33, 0xFFFF}};
        case u'W':
            return {
                {0, u'0' - 1}, {u'9' + 1, u'A' - 1}, {u'Z' + 1, u'_' - 1}, {u'`', u'`'}, {u'z' + 1, 0xFFFF}};
        default:
            return {};
    }
}

std::optional<char16_t> escapedUnit(Reader& reader, char16_t unit) {
    switch (unit) {
        case u'0':
            return number(u"0" + digits(reader, 8, 2), 8);
        case u'x':
        case u'o':
            return numberEscape(reader, unit == u'x' ? 16 : 8);
        case u'a':
            return 7;
        case u'b':
            return 8;
        case u'f':
            return 12;
        case u'n':
            return 10;
        case u'r':
            return 13;
        case u't':
            return 9;
        case u'v':
            return 11;
        default:
            break;
    }
    if (isLetter(unit) || isDigit(unit)) {
        throw Unreadable();
    }
    return unit;
}

SetText readSet(Reader& reader) {
    SetText set;
    set.negated = reader.takes(u"^");
    if (reader.sees(u"]") || reader.sees(u"-")) {
        throw Unreadable();
    }
    while (!reader.takes(u"]")) {
        readSetItem(reader, set.ranges);
    }
    return set;
}

}  // namespace corvane_tests::reference
