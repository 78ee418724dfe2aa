// Members as they are written between brackets. Uniting two sets is joining their texts, with one
// exception.
#include "regexp/builder/sets.h"

#include "regexp/builder/quote.h"

namespace RE_Builder_Space {
namespace {

constexpr std::u16string_view nullEscape = u"\\0";

std::u16string_view membersOf(RE_SET_TYPE type) {
    switch (type) {
        case RE_SET_DIGIT:
            return u"\\d";
        case RE_SET_WORD:
            return u"\\w";
        case RE_SET_SPACE:
            return u"\\s";
        case RE_SET_NULL:
            return nullEscape;
        case RE_SET_NOT_DIGIT:
            return u"\\D";
        case RE_SET_NOT_WORD:
            return u"\\W";
        case RE_SET_NOT_SPACE:
            return u"\\S";
        case RE_SET_NOT_NULL:
            return u"\\x{01}-\\x{FFFF}";
    }
    return {};
}

// An octal escape takes in octal digits that follow it, so a set that begins with one is joined to it with
// that digit written by its value. Where the left side only looks like the escape (a quoted backslash and a
// 0) the same does no harm.
std::u16string united(const std::u16string& left, const std::u16string& right) {
    std::u16string both = left;
    if (left.ends_with(nullEscape) && !right.empty() && right.front() >= u'0' && right.front() <= u'7') {
        appendHexadecimal(both, right.front());
        return both.append(right, 1);
    }
    return both += right;
}

}  // namespace

RE_Set::RE_Set(RE_SET_TYPE type) : members(membersOf(type)) {}

RE_Set operator+(const RE_Set& left, const RE_Set& right) {
    RE_Set both(left);
    both.members = united(left.members, right.members);
    return both;
}

// Quoting includes the hyphen, so that two units never become a range.
RE_SetItem::RE_SetItem(std::u16string_view units) {
    for (const char16_t unit : units) {
        appendQuoted(members, unit);
    }
}

// The parser takes the bounds in either order.
std::u16string RE_SetItem::range(char16_t low, char16_t high) {
    std::u16string text;
    appendQuoted(text, low);
    text += u'-';
    appendQuoted(text, high);
    return text;
}

RE_SetItem operator+(const RE_SetItem& left, const RE_SetItem& right) {
    RE_SetItem both;
    both.members = united(left.members, right.members);
    return both;
}

}  // namespace RE_Builder_Space
