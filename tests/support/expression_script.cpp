// The script. It answers from the texts alone, without a state, so the number of calls cannot change an answer and the
// engine and the reference may evaluate in any order.
#include "tests/support/expression_script.h"

#include "tests/support/text.h"

#include <cstdio>

namespace corvane_tests {
namespace {

// A unit as pattern text, whatever it is.
std::u16string escaped(char16_t unit) {
    char text[16];
    std::snprintf(text, sizeof text, "\\x{%X}", static_cast<unsigned>(unit));
    return widen(text);
}

}  // namespace

std::optional<std::u16string> scriptedAnswer(std::u16string_view expression, const std::vector<std::u16string>& texts) {
    const std::u16string first = texts.empty() ? u"" : texts.front();
    if (expression.starts_with(u"=")) {
        return std::u16string(expression.substr(1));
    }
    if (expression == u"yes" || (expression.starts_with(u"even(") && first.size() % 2 == 0)) {
        return u"yes";
    }
    if (expression.starts_with(u"unit(") && !first.empty()) {
        return escaped(first.front());
    }
    return std::nullopt;
}

}  // namespace corvane_tests
