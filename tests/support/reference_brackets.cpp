// Pairing by a count of the open groups: inside such a text nothing is read but brackets, sets and, under free spacing,
// comments up to the end of the line. Escaped units count for nothing.
#include "tests/support/reference_brackets.h"

#include "tests/support/reference_reader.h"

namespace corvane_tests::reference {
namespace {

/// The index past the set whose bracket is at `at`. A closing bracket that comes first is a member.
size_t afterSet(std::u16string_view text, size_t at) {
    ++at;
    at += text.substr(at, 1) == u"^" ? 1 : 0;
    for (bool first = true; at < text.size(); first = false) {
        if (text[at] == u']' && !first) {
            return at + 1;
        }
        at += text[at] == u'\\' ? 2 : 1;
    }
    throw Unreadable();
}

}  // namespace

// Only what can hide a parenthesis is read.
size_t groupEnd(std::u16string_view text, bool freeSpacing) {
    for (size_t at = 0, open = 1; at < text.size();) {
        const char16_t unit = text[at];
        open += unit == u'(' ? 1U : 0U;
        open -= unit == u')' ? 1U : 0U;
        if (open == 0) {
            return at;
        }
        if (unit == u'[') {
            at = afterSet(text, at);
        } else if (unit == u'#' && freeSpacing) {
            at = text.find(u'\n', at);
        } else {
            at += unit == u'\\' ? 2 : 1;
        }
    }
    throw Unreadable();
}

size_t expressionEnd(std::u16string_view text) {
    // The closing brackets that are due, the innermost last.
    std::u16string expected(1, u'}');
    for (size_t at = 0; at < text.size(); ++at) {
        static constexpr std::u16string_view opening = u"([{", closing = u")]}";
        const size_t kind = opening.find(text[at]);
        if (text[at] == u'\\') {
            ++at;
        } else if (kind != opening.npos) {
            expected += closing[kind];
        } else if (text[at] == expected.back()) {
            expected.pop_back();
            if (expected.empty()) {
                return at;
            }
        } else if (closing.find(text[at]) != closing.npos) {
            throw Unreadable();
        }
    }
    throw Unreadable();
}

}  // namespace corvane_tests::reference
