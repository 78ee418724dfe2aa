// Classes, escapes and sets of the reference parser.
#include "tests/support/reference_units.h"

#include <algorithm>

namespace corvane_tests::reference {
namespace {

void readSetItem(Reader& reader, std::vector<Range>& ranges) {
    char16_t low = reader.take();
    if (low == u'\\') {
        const char16_t letter = reader.take();
        const std::vector<Range> extra = classRanges(letter);
        if (!extra.empty()) {
            ranges.insert(ranges.end(), extra.begin(), extra.end());
            return;
        }
        low = escapedUnit(letter);
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

char16_t escapedUnit(char16_t unit) {
    switch (unit) {
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
