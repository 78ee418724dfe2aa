// The sentences of the numbered warnings; the same list, with what becomes of the text, is in
// docs/dialect.md.
#include "tools/warning_text.h"

#include <array>

namespace tool {
namespace {

constexpr std::array<std::string_view, 23> sentences = {
    "no warning has this number",
    "this escape has no meaning here",
    "\\o needs octal digits in braces",
    "\\x needs hexadecimal digits",
    "the text ends in a single backslash",
    "this \"(\" is never closed",
    "this \")\" closes no group",
    "this \"[\" is never closed",
    "there is nothing before this quantifier to repeat",
    "this \"{\" is never closed",
    "the construct before this quantifier was dropped, so nothing is repeated",
    "a group name must start with a letter, hold only letters, digits and \"_\", and end in \">\"",
    "a named group creates no token here",
    "a mode list can have only one \"-\"",
    "no group has this name",
    "this is not a mode letter",
    "the mode list names no mode",
    "expressions cannot be evaluated here",
    "the condition of this group is never closed",
    "a condition must be a token's number or name, a lookaround or an expression",
    "a counted quantifier must be {n}, {n,} or {n,m} with n not above m",
    "this \"$\" starts no valid reference",
    "this construct is nested too deeply or grows too large",
};

}  // namespace

std::string_view warningSentence(unsigned number) {
    return number < sentences.size() ? sentences[number] : sentences[0];
}

}  // namespace tool
