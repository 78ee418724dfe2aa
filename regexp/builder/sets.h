// Sets of units for patterns made by a program: the arguments of `one_of` and `none_of` in algebra.h.
//
// Values in standard strings; they hold what is written between the brackets, quoted. Functions throw
// `std::bad_alloc` only.
#pragma once

#include "regexp/base/export.h"

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace RE_Builder_Space {

/// The numbers are part of the interface. From 4 on they are the complements of 0 to 3.
enum RE_SET_TYPE {
    RE_SET_DIGIT = 0,
    RE_SET_WORD = 1,
    RE_SET_SPACE = 2,
    RE_SET_NULL = 3,  ///< the unit 0
    RE_SET_NOT_DIGIT = 4,
    RE_SET_NOT_WORD = 5,
    RE_SET_NOT_SPACE = 6,
    RE_SET_NOT_NULL = 7
};

/// A class of units, or with `+` the union of several. Which units are digits, word units and white space
/// is the host's to say.
class CORVANE_REGEXP_EXPORT RE_Set {
public:
    explicit RE_Set(RE_SET_TYPE type);

    friend CORVANE_REGEXP_EXPORT RE_Set operator+(const RE_Set& left, const RE_Set& right);

private:
    friend class RE_SetItem;

    std::u16string members;
};

/// What `one_of` and `none_of` choose from: classes, units, ranges, and with `+` unions of them. Members are
/// UTF-16 units: a character beyond U+FFFF is two of them.
class CORVANE_REGEXP_EXPORT RE_SetItem {
public:
    /// No unit at all.
    RE_SetItem() = default;
    RE_SetItem(const RE_Set& set) : members(set.members) {}
    /// Each unit of the text.
    explicit RE_SetItem(std::u16string_view units);
    explicit RE_SetItem(std::nullptr_t) = delete;
    /// All units between the two, in either order, and these themselves.
    template <std::same_as<char16_t> Low, std::same_as<char16_t> High>
    RE_SetItem(Low low, High high) : members(range(low, high)) {}

    /// What is written between the brackets of a set; empty for no unit at all. Valid while this lives.
    const std::u16string& text() const { return members; }

    friend CORVANE_REGEXP_EXPORT RE_SetItem operator+(const RE_SetItem& left, const RE_SetItem& right);

private:
    static std::u16string range(char16_t low, char16_t high);

    std::u16string members;
};

}  // namespace RE_Builder_Space
