// Each function is one or more replacements, compiled on its first call and kept until the process ends.
// Compiled patterns and replacements are immutable, so threads share them.
#include "regexp/translate/translate.h"

#include "host/i18n.h"
#include "regexp/builder/algebra.h"
#include "regexp/replace/replace.h"
#include "regexp/tree.h"

#include <algorithm>
#include <array>

namespace {

namespace builder = RE_Builder_Space;

constexpr std::u16string_view metacharacters = u"$^.\\+[](){}|-*?";

// All of them are below 256, so that a text without any, the commonest, is recognised by one look-up a
// unit.
class Metacharacter_Table {
public:
    constexpr Metacharacter_Table() {
        for (const char16_t unit : metacharacters) {
            below256[unit] = true;
        }
    }
    constexpr bool contains(char16_t unit) const { return unit < below256.size() && below256[unit]; }

private:
    std::array<bool, 256> below256{};
};

constexpr Metacharacter_Table metacharacterTable;

// Shared by two functions: a backslash and the match.
const RE_Replace& backslashBefore() {
    static const RE_Replace replacement(u"\\\\$0");
    return replacement;
}

std::u16string replaceAll(std::u16string_view text, const RE_Tree& tree, const RE_Replace& replacement) {
    return replacement.replace(text, tree, false, 0);
}

}  // namespace

std::u16string RE_Translate::escape(std::u16string_view text) {
    const auto isMeta = [](char16_t unit) { return metacharacterTable.contains(unit); };
    if (std::none_of(text.begin(), text.end(), isMeta)) {
        return std::u16string(text);
    }
    static const RE_Tree metacharacter(to_ustring(R"([\$\^\.\\\*\+\[\]\(\)\{\}\?\|\-])"), false);
    return replaceAll(text, metacharacter, backslashBefore());
}

// The order matters: the dots that are written for * and ? must not be escaped, so `*` and `?` are left out
// of the first step.
std::u16string RE_Translate::translateWildcard(std::u16string_view text) {
    static const RE_Tree metacharacter(builder::one_of(builder::RE_SetItem(u"$^.\\+[](){}|-")), false);
    static const RE_Tree star(builder::literal(u"*"), false);
    static const RE_Tree question(builder::literal(u"?"), false);
    static const RE_Replace anyText(u".*");
    static const RE_Replace anyUnit(u".");
    const std::u16string escaped = replaceAll(text, metacharacter, backslashBefore());
    return replaceAll(replaceAll(escaped, star, anyText), question, anyUnit);
}

std::u16string RE_Translate::makeWhitespaceSpaces(std::u16string_view text) {
    static const RE_Tree whitespace(
        builder::one_of(builder::RE_Set(builder::RE_SET_SPACE) + builder::RE_Set(builder::RE_SET_NULL)),
        false);
    static const RE_Replace space(u" ");
    return replaceAll(text, whitespace, space);
}
