// The case of a replaced text follows the case of the text it replaces.
#pragma once

#include <cstddef>
#include <string_view>

/// How letters are cased. Blanks and underscores separate words; letters without case, and words without
/// letters that have one, do not count. The first form that fits is the form.
enum class RE_Case_Form {
    lower,       ///< at least one lower-case letter and no upper-case one
    upper,       ///< at least one upper-case letter and no lower-case one
    every_word,  ///< each word starts with an upper-case letter, and lower-case ones follow, if any
    first_word,  ///< the first word does, the others are lower case
    irregular    ///< anything else, and text without cased letters
};

RE_Case_Form caseForm(std::u16string_view text);

/// Gives the text this form, unit by unit; the irregular form changes nothing.
void applyCaseForm(char16_t* text, std::size_t length, RE_Case_Form form);
