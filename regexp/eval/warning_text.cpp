// Names, sentences and places of the warnings.
//
// The places are found again from the text: the parser passes one position only, so that reporting costs
// nothing where nobody shows it. The helpers therefore repeat some of the syntax, loosely, and must stay
// within the text whatever it holds.
#include "regexp/eval/warning_text.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

// By number. Names are for programs and never change; sentences continue "warning 5 at column 3: ...".
constexpr std::array<RE_Warning_Description, 23> descriptions = {{
    {"none", "no warning has this number"},
    {"unknown-escape", "this escape has no meaning here"},
    {"bad-octal", "\\o needs octal digits in braces"},
    {"bad-hexadecimal", "\\x needs hexadecimal digits"},
    {"trailing-backslash", "the text ends in a single backslash"},
    {"unmatched-open", "this \"(\" is never closed"},
    {"unmatched-close", "this \")\" closes no group"},
    {"unclosed-set", "this \"[\" is never closed"},
    {"nothing-to-repeat", "there is nothing before this quantifier to repeat"},
    {"unclosed-quantifier", "this \"{\" is never closed"},
    {"repeated-dropped", "the construct before this quantifier was dropped, so nothing is repeated"},
    {"bad-name",
     "a group name must start with a letter, hold only letters, digits and \"_\", and end in \">\""},
    {"name-without-token", "a named group creates no token here"},
    {"second-minus", "a mode list can have only one \"-\""},
    {"undefined-name", "no group has this name"},
    {"bad-mode-letter", "this is not a mode letter"},
    {"bad-mode", "the mode list names no mode"},
    {"evaluation-disabled", "expressions cannot be evaluated here"},
    {"unclosed-condition", "the condition of this group is never closed"},
    {"bad-condition", "a condition must be a token's number or name, a lookaround or an expression"},
    {"bad-quantifier", "a counted quantifier must be {n}, {n,} or {n,m} with n not above m"},
    {"bad-reference", "this \"$\" starts no valid reference"},
    {"too-deep", "this construct is nested too deeply, or the text grows beyond a limit"},
}};

using View = std::u16string_view;

// Letters, digits and the underscore, all ASCII. Units above stay above when bit 5 is set.
bool isNameUnit(char16_t unit) {
    const char16_t lower = unit | 0x20;
    return (lower >= u'a' && lower <= u'z') || (unit >= u'0' && unit <= u'9') || unit == u'_';
}

/// Units from `start` up to the first of `last`, with it; one unit when there is none.
std::size_t lengthThrough(View text, std::size_t start, char16_t last) {
    const std::size_t end = text.find(last, start);
    return end == View::npos ? 1 : end - start + 1;
}

/// How many units have to be inserted, removed or replaced to make one text the other; in one row of the
/// usual table.
std::size_t editDistance(View a, View b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return row[b.size()];
}

/// The name of a group in the text that may have been meant, or none: the nearest one by at most two edits,
/// and never by as many as the name has units. Neither long names are compared nor very many, which bounds the time for a
/// hostile pattern.
View nearestName(View text, View wanted) {
    constexpr View opening = u"(?<";
    constexpr std::size_t longestCompared = 64;
    std::size_t left = 256;  // names
    View nearest;
    std::size_t least = std::min<std::size_t>(3, wanted.size());
    for (std::size_t at = text.find(opening);
         at != View::npos && wanted.size() <= longestCompared && left != 0;
         at = text.find(opening, at + 1), --left) {
        const std::size_t start = at + opening.size();
        std::size_t end = start;
        while (end < text.size() && isNameUnit(text[end])) {
            ++end;
        }
        const View name = text.substr(start, end - start);
        const std::size_t distance = name.size() <= longestCompared ? editDistance(name, wanted) : least;
        if (!name.empty() && distance < least) {
            nearest = name;
            least = distance;
        }
    }
    return nearest;
}

/// The backslash, the letter, and the braces of a number that has some. `where` is the letter or its
/// backslash. A letter without a meaning was probably meant as itself.
RE_Warning_Span escapeSpan(RE_Warning warning, View text, std::size_t where) {
    const std::size_t start = where > 0 && text[where - 1] == u'\\' ? where - 1 : where;
    const std::size_t letter = start + (text[start] == u'\\' ? 1 : 0);
    const bool braced = letter + 1 < text.size() && text[letter + 1] == u'{';
    const bool isNumber = letter < text.size() && (text[letter] == u'x' || text[letter] == u'o');
    // What cannot be part of a number in braces ends the search, so that an unclosed brace does not reach
    // over the pattern.
    const std::size_t brace = isNumber && braced ? text.find_first_of(u"}()[\\|", letter) : View::npos;
    const bool closed = brace != View::npos && text[brace] == u'}';
    const std::size_t end = closed ? brace + 1 : std::min(letter + 1, text.size());
    RE_Warning_Span span{start, end - start, {}};
    const bool isLetter = letter < text.size() && (text[letter] < u'0' || text[letter] > u'9');
    if (warning == RE_WARNING_UNKNOWN_ESCAPE && isLetter && !isNumber) {
        span.correction = text.substr(letter, 1);
    }
    return span;
}

/// Units from the bracket at `start` up to the one that closes it, with it; one unit when there is none.
std::size_t bracketLength(View text, std::size_t start) {
    const char16_t opening = text[start];
    const char16_t closing = opening == u'(' ? u')' : u'}';
    // Pairs one kind of bracket only; a backslash makes the next unit inert.
    std::size_t depth = 0;
    for (std::size_t at = start; at < text.size(); ++at) {
        if (text[at] == opening) {
            ++depth;
        } else if (text[at] == closing && --depth == 0) {
            return at - start + 1;
        } else if (text[at] == u'\\') {
            ++at;
        }
    }
    return 1;
}

/// A malformed name reaches to its > or to the end of its group, whichever comes first.
RE_Warning_Span badNameSpan(View text, std::size_t where) {
    const std::size_t end = text.find_first_of(u">)", where);
    if (end == View::npos) {
        return {where, 1, {}};
    }
    return {where, end - where + (text[end] == u'>' ? 1 : 0), {}};
}

/// The name of a reference, in \k<name> or as a condition.
RE_Warning_Span nameSpan(View text, std::size_t where) {
    const bool isEscape = text[where] == u'\\';
    const std::size_t start = isEscape ? std::min(where + 3, text.size()) : where;
    std::size_t end = start;
    while (end < text.size() && isNameUnit(text[end])) {
        ++end;
    }
    RE_Warning_Span span{start, end - start, {}};
    const View nearest = nearestName(text, text.substr(start, end - start));
    if (!nearest.empty()) {
        span.correction = nearest;
    }
    return span;
}

/// {,m} and {n,m} with n above m have a plain meaning; other braces were probably meant literally.
std::u16string correctedQuantifier(View braces) {
    const View inside = braces.substr(1, braces.size() - 2);
    const std::size_t comma = inside.find(u',');
    const auto isNumber = [](View digits) {
        return !digits.empty() &&
               std::ranges::all_of(digits, [](char16_t unit) { return unit >= u'0' && unit <= u'9'; });
    };
    if (comma != View::npos && isNumber(inside.substr(comma + 1))) {
        const std::u16string first(inside.substr(0, comma));
        const std::u16string second(inside.substr(comma + 1));
        if (first.empty()) {
            return u"{0," + second + u"}";
        }
        if (isNumber(first)) {
            return u"{" + second + u"," + first + u"}";
        }
    }
    return u"\\" + std::u16string(braces);
}

/// A quantifier that repeats nothing is removed or quoted, whichever leaves the likelier meaning.
RE_Warning_Span quantifierSpan(RE_Warning warning, View text, std::size_t where) {
    const bool braces = text[where] == u'{' && warning != RE_WARNING_UNCLOSED_QUANTIFIER;
    RE_Warning_Span span{where, braces ? lengthThrough(text, where, u'}') : 1, {}};
    const View own = text.substr(where, span.length);
    if (warning == RE_WARNING_REPEATED_DROPPED) {
        span.correction = u"";
    } else if (warning == RE_WARNING_BAD_QUANTIFIER && own.ends_with(u'}')) {
        span.correction = correctedQuantifier(own);
    } else {
        span.correction = u"\\" + std::u16string(own);
    }
    return span;
}

}  // namespace

const RE_Warning_Description& describe(RE_Warning warning) {
    const auto number = static_cast<std::size_t>(warning);
    return descriptions[number < descriptions.size() ? number : 0];
}

// The others mark one unit and suggest nothing.
RE_Warning_Span locateWarning(RE_Warning warning, std::u16string_view text, std::size_t where) {
    // A place at or after the end has no unit to mark.
    if (where >= text.size()) {
        return {std::min(where, text.size()), 0, {}};
    }
    const std::u16string unit(1, text[where]);
    switch (warning) {
        case RE_WARNING_UNKNOWN_ESCAPE:
        case RE_WARNING_BAD_OCTAL:
        case RE_WARNING_BAD_HEX:
            return escapeSpan(warning, text, where);
        case RE_WARNING_TRAILING_BACKSLASH:
        case RE_WARNING_UNMATCHED_OPEN:
        case RE_WARNING_UNMATCHED_CLOSE:
        case RE_WARNING_UNCLOSED_SET:
        case RE_WARNING_BAD_REFERENCE:
            return {where, 1, u"\\" + unit};
        case RE_WARNING_NOTHING_TO_REPEAT:
        case RE_WARNING_UNCLOSED_QUANTIFIER:
        case RE_WARNING_REPEATED_DROPPED:
        case RE_WARNING_BAD_QUANTIFIER:
            return quantifierSpan(warning, text, where);
        case RE_WARNING_BAD_NAME:
            return badNameSpan(text, where);
        case RE_WARNING_NAME_WITHOUT_TOKEN:
            return {where, lengthThrough(text, where, u'>'), u":"};
        case RE_WARNING_SECOND_MINUS:
        case RE_WARNING_BAD_MODE_AFTER_LETTERS:
            return {where, 1, u""};
        case RE_WARNING_UNDEFINED_NAME:
            return nameSpan(text, where);
        case RE_WARNING_EVALUATION_DISABLED:
            return {where, bracketLength(text, where), {}};
        case RE_WARNING_BAD_CONDITION:
            return {where, std::max<std::size_t>(lengthThrough(text, where, u')'), 2) - 1, {}};
        case RE_WARNING_NONE:
        case RE_WARNING_BAD_MODE:
        case RE_WARNING_UNCLOSED_CONDITION:
        case RE_WARNING_TOO_DEEP:
            break;
    }
    // These, and numbers that are no warnings.
    return {where, 1, {}};
}
