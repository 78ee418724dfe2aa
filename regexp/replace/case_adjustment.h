// The case of a replaced text follows the case of the text it replaces: `cat` is replaced by `dog`, `Cat`
// by `Dog`, `CAT` by `DOG`. Decided and applied unit by unit with the host's simple case mapping, so a text
// keeps its length.
#pragma once

#include <cstddef>
#include <string_view>

/// How letters are cased. White space and underscores separate words; letters without case, and words
/// without letters that have one, do not count. The order matters: a text has the first form that fits, so
/// `A` is upper and not every_word.
enum class RE_Case_Form {
    lower,       ///< at least one lower-case letter and no upper-case one
    upper,       ///< at least one upper-case letter and no lower-case one
    every_word,  ///< each word starts with an upper-case letter, and lower-case ones follow, if any
    first_word,  ///< the first word does, the others are lower case
    irregular    ///< anything else, and text without cased letters
};

/// The form of a text, in one pass. The host's class functions decide what has case.
RE_Case_Form caseForm(std::u16string_view text);

/// Gives the `length` units of the text this form, in place; the irregular form changes nothing.
void applyCaseForm(char16_t* text, std::size_t length, RE_Case_Form form);
