// Units, classes, escapes and sets of the reference parser. The tables are written out rather than taken from a
// library, as the engine takes its own from one.
#include "tests/support/reference_units.h"

#include <algorithm>

namespace corvane_tests::reference {
namespace {

using Ranges = std::vector<Range>;

// Written for the units that pattern_constructs.cpp and subject_random.cpp draw; other units are in no class here.
const Ranges kDigits = {{u'0', u'9'}, {0x0660, 0x0669}};
const Ranges kBlanks = {{9, 13}, {28, 32}, {0x2003, 0x2003}};
const Ranges kLetters = {{u'A', u'Z'}, {u'a', u'z'},     {0xC0, 0xD6},     {0xD8, 0xF6},
                         {0xF8, 0xFF}, {0x0130, 0x0130}, {0x0400, 0x045F}, {0x212A, 0x212A}};

bool contains(const Ranges& ranges, char16_t unit) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [=](const Range& range) { return range.low <= unit && unit <= range.high; });
}

Ranges wordRanges() {
    Ranges result = kLetters;
    result.insert(result.end(), kDigits.begin(), kDigits.end());
    result.push_back({u'_', u'_'});
    return result;
}

// All units that are in none of the ranges, which must not overlap.
Ranges complement(Ranges ranges) {
    std::sort(ranges.begin(), ranges.end(), [](const Range& a, const Range& b) { return a.low < b.low; });
    Ranges result;
    unsigned next = 0;
    for (const Range& range : ranges) {
        if (range.low > next) {
            result.push_back({static_cast<char16_t>(next), static_cast<char16_t>(range.low - 1)});
        }
        next = range.high + 1U;
    }
    result.push_back({static_cast<char16_t>(next), 0xFFFF});
    return result;
}

/// A member of a set: a class, a unit, or nothing for a character of two units.
struct Member {
    Ranges ranges;
    bool isClass = false;
    bool isBareHyphen = false;
};

// One unit, a class, or a character of two units, which a set leaves out.
Member readMember(Reader& reader) {
    const char16_t unit = reader.take();
    if (unit != u'\\') {
        return {{{unit, unit}}, false, unit == u'-'};
    }
    const char16_t letter = reader.take();
    if (Ranges ranges = classRanges(letter); !ranges.empty()) {
        return {std::move(ranges), true, false};
    }
    const char32_t value = escapedCharacter(letter, reader);
    const auto single = static_cast<char16_t>(value);
    return value > 0xFFFF ? Member{} : Member{{{single, single}}, false, false};
}

void add(Ranges& all, const Ranges& more) {
    all.insert(all.end(), more.begin(), more.end());
}

/// A hyphen that would join what is complete to what follows stands for itself.
void takeLooseHyphen(Reader& reader, Ranges& ranges) {
    if (!reader.sees(u"-]") && reader.takes(u"-")) {
        ranges.push_back({u'-', u'-'});
    }
}

/// One member, or a range of two. A hyphen is a range only between two single units.
void readMembers(Reader& reader, Ranges& ranges, bool first) {
    const Member low = readMember(reader);
    const bool mayJoin = !low.isClass && !low.ranges.empty() && !(first && low.isBareHyphen);
    if (mayJoin && reader.sees(u"-") && !reader.sees(u"-]")) {
        Reader ahead = reader;
        ahead.need(u"-");
        const Member high = readMember(ahead);
        if (!high.isClass && !high.ranges.empty()) {
            const char16_t from = low.ranges[0].low, to = high.ranges[0].low;
            ranges.push_back({std::min(from, to), std::max(from, to)});
            reader = ahead;
            takeLooseHyphen(reader, ranges);
            return;
        }
    }
    add(ranges, low.ranges);
    if (low.isClass) {
        takeLooseHyphen(reader, ranges);
    }
}

char32_t braced(Reader& reader, int base) {
    const char32_t value = reader.digits(base, 8);
    reader.need(u"}");
    return value;
}

}  // namespace

// Two units fold to ASCII from far away; the others lie 32 or 80 below their lower case.
char16_t lower(char16_t unit) {
    switch (unit) {
        case 0x0130:
            return u'i';
        case 0x212A:
            return u'k';
        default:
            break;
    }
    const bool near = contains({{u'A', u'Z'}, {0xC0, 0xD6}, {0xD8, 0xDE}, {0x0410, 0x042F}}, unit);
    const bool far = contains({{0x0400, 0x040F}}, unit);
    return static_cast<char16_t>(unit + (near ? 32 : far ? 80 : 0));
}

bool sameIgnoringCase(char16_t left, char16_t right) {
    return lower(left) == lower(right);
}

// All units with the same lower case, found by trying the few distances that there are.
std::u16string casesOf(char16_t unit) {
    std::u16string result(1, unit);
    const char16_t base = lower(unit);
    for (const char16_t other : {base, static_cast<char16_t>(base - 32), static_cast<char16_t>(base - 80),
                                 char16_t{0x0130}, char16_t{0x212A}}) {
        if (lower(other) == base && result.find(other) == result.npos) {
            result += other;
        }
    }
    return result;
}

bool isWord(char16_t unit) {
    return contains(kLetters, unit) || contains(kDigits, unit) || unit == u'_';
}

std::vector<Range> classRanges(char16_t letter) {
    switch (letter) {
        case u'd':
            return kDigits;
        case u's':
            return kBlanks;
        case u'w':
            return wordRanges();
        case u'D':
            return complement(kDigits);
        case u'S':
            return complement(kBlanks);
        case u'W':
            return complement(wordRanges());
        default:
            return {};
    }
}

char32_t escapedCharacter(char16_t letter, Reader& reader) {
    static constexpr std::u16string_view named = u"abtnvfr";  // the units 7 to 13
    if (const size_t place = named.find(letter); place != named.npos) {
        return static_cast<char32_t>(7 + place);
    }
    switch (letter) {
        case u'0':
            return reader.seesDigit() && !reader.sees(u"8") && !reader.sees(u"9") ? reader.digits(8, 2) : 0;
        case u'o':
            reader.need(u"{");
            return braced(reader, 8);
        case u'x':
            return reader.takes(u"{") ? braced(reader, 16) : reader.digits(16, 2);
        default:
            break;
    }
    if (isLetter(letter) || isDigit(letter)) {
        throw Unreadable();
    }
    return letter;
}

SetText readSet(Reader& reader) {
    SetText set;
    set.negated = reader.takes(u"^");
    readMembers(reader, set.ranges, true);  // whatever comes first, a bracket too
    while (!reader.takes(u"]")) {
        readMembers(reader, set.ranges, false);
    }
    return set;
}

}  // namespace corvane_tests::reference
