// Text with the texts of tokens in it, for what is evaluated or read as a pattern while a search runs.
//
// Kept apart from `RE_Builder` on purpose: what is written here is source of the host's language, or text
// that becomes a pattern, and must not be combined with pattern pieces by mistake.
#pragma once

#include "regexp/base/export.h"
#include "regexp/builder/builder.h"
#include "regexp/builder/tokens.h"

#include <cstddef>
#include <string_view>

namespace RE_Builder_Space {

/// An expression of the host, or the text of a pattern, in which tokens have places: `+` joins the parts.
/// In an expression a part that is no text is a variable, so that what the subject holds never becomes
/// source. A part that is absent has no text that a pattern could match: see docs/builder.md. A value like
/// `RE_Builder`, with the same rules for memory and threads.
class CORVANE_REGEXP_EXPORT RE_Template {
public:
    /// No text.
    RE_Template() = default;
    /// Exactly this text, quoted: nothing in it is taken for a reference.
    explicit RE_Template(std::u16string_view text);
    explicit RE_Template(std::nullptr_t) = delete;
    /// The text of the nearest group of this token that opens before here. Implicit, so that `text + token`
    /// can be written.
    RE_Template(const RE_Token& token);
    /// The text of the first token in effect that has this name.
    static RE_Template named(RE_Token_Name name);
    /// What the attempt has matched so far.
    static RE_Template matched();
    /// The subject before the attempt.
    static RE_Template before();
    /// The subject after what the attempt has matched so far.
    static RE_Template after();

    RE_Template& operator+=(const RE_Template& next);
    friend RE_Template operator+(RE_Template first, const RE_Template& second) {
        first += second;
        return first;
    }

private:
    friend struct RE_Composer;

    RE_Builder written;  ///< only its text and its marks mean something
};

}  // namespace RE_Builder_Space
