// Text that was escaped matches itself and nothing else; wildcards match what they were made from.
//
// The oracle for "nothing else" is a plain search for the text. Free spacing is taken out of the flags, as
// escaped text is for patterns without it.
#include "fuzz/targets.h"

namespace corvane_fuzz {
namespace {

/// The pattern matches the whole subject, whatever flags and settings.
void requireWhole(std::u16string_view pattern, std::u16string_view subject, const Input& input) {
    const RE_Flags flags = (input.flags() | RE_FLAG_DOT_ALL | RE_FLAG_ALLOW_EMPTY) & ~RE_FLAG_FREE_SPACING;
    const corvane_tests::Engine engine(pattern, flags, input.config());
    require(engine.warnings().empty(), "a warning", pattern);
    const auto found = engine.searchWithin(subject, 0, kLimits);
    require(!found || (found->matched && found->start == 0 && found->length == subject.size()),
            "does not match itself", pattern, subject);
}

}  // namespace

void escape(const Input& input) {
    const std::u16string_view text = input.text(0, 1000);
    requireWhole(RE_Translate::escape(text), text, input);
    requireWhole(RE_Translate::translateWildcard(text), text, input);
    require(RE_Translate::makeWhitespaceSpaces(text).size() == text.size(), "units lost", text);
    const std::u16string_view other = input.text(1, 1000);
    const corvane_tests::Engine engine(RE_Translate::escape(text), RE_FLAG_ALLOW_EMPTY);
    const auto found = engine.searchWithin(other, 0, kLimits);
    require(!found || found->matched == (other.find(text) != other.npos), "finds other text", text, other);
}

}  // namespace corvane_fuzz
