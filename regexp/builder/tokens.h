// How patterns made by a program refer to their tokens: by an identity, or by a name.
#pragma once

#include "regexp/base/export.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace RE_Builder_Space {

/// The identity of a token without a name. Copies are the same token, and every other one made is different
/// from it, on all threads. Groups may share one: a reference is to the nearest group of the token that
/// opens before it, so that a pattern and its references can be used repeatedly. Need not outlive the
/// patterns that were made with it.
class CORVANE_REGEXP_EXPORT RE_Token {
public:
    RE_Token();

private:
    friend class RE_Builder;
    friend class RE_Template;
    friend struct RE_Composer;

    std::uint64_t identity;  ///< never 0
};

/// The name of a token: an ASCII letter, then ASCII letters, digits or `_`. A literal is checked by the
/// compiler. A view: a name made of a text that is not a literal must not outlive it; builders copy what
/// they take.
class RE_Token_Name {
public:
    template <std::size_t Size>
    consteval RE_Token_Name(const char16_t (&literal)[Size]) : name(literal, Size - 1) {
        if (!isValid(name)) {
            // Not a constant expression, so that compiling ends here and shows the text.
            throw "not a token name";
        }
    }
    /// A name that is known at run time only, or nothing when it is not valid. The text must outlive the
    /// result.
    static constexpr std::optional<RE_Token_Name> from(std::u16string_view name) {
        return isValid(name) ? std::optional(RE_Token_Name(name, 0)) : std::nullopt;
    }
    static constexpr bool isValid(std::u16string_view name) {
        if (name.empty() || !isLetter(name.front())) {
            return false;
        }
        for (const char16_t unit : name) {
            if (!isLetter(unit) && unit != u'_' && (unit < u'0' || unit > u'9')) {
                return false;
            }
        }
        return true;
    }

    constexpr std::u16string_view text() const { return name; }

private:
    constexpr RE_Token_Name(std::u16string_view checked, int) : name(checked) {}
    static constexpr bool isLetter(char16_t unit) {
        return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
    }

    std::u16string_view name;
};

}  // namespace RE_Builder_Space
