// Depth and width are small, so that most of what is drawn is about the quantifier and the group under it. The literal
// or anchor after the whole makes the loop backtrack into its passes.
#include "tests/support/nullable_patterns.h"

#include <iterator>

namespace corvane_tests {

std::string NullablePatterns::pattern() {
    static constexpr const char* behind[] = {"", "", "b", "$"};
    m_groups = 0;
    const std::string text = alternation(2);
    return text + behind[below(std::size(behind))];
}

std::u16string NullablePatterns::subject(size_t longest) {
    std::u16string text;
    for (size_t left = below(longest + 1); left > 0; --left) {
        text += u"aaab"[below(4)];
    }
    return text;
}

std::string NullablePatterns::alternation(int depth) {
    std::string text = sequence(depth);
    for (size_t more = below(3); more > 0; --more) {
        text += "|" + sequence(depth);
    }
    return text;
}

std::string NullablePatterns::sequence(int depth) {
    std::string text;
    for (size_t left = below(3); left > 0; --left) {
        text += item(depth);
    }
    return text;
}

std::string NullablePatterns::item(int depth) {
    static constexpr const char* units[] = {"a", "a", "b", "."};
    if (depth > 0 && below(5) > 0) {
        const std::string repeated = group(depth - 1);
        return below(4) > 0 ? repeated + m_quantifiers[below(m_quantifiers.size())] : repeated;
    }
    if (below(6) == 0) {
        return m_anchors[below(m_anchors.size())];
    }
    const std::string unit = units[below(std::size(units))];
    return below(3) == 0 ? unit + m_quantifiers[below(m_quantifiers.size())] : unit;
}

std::string NullablePatterns::group(int depth) {
    if (m_groups < m_mostGroups && below(3) == 0) {
        ++m_groups;
        return "(" + alternation(depth) + ")";
    }
    static constexpr const char* openings[] = {"(?:", "(?:", "(?:", "(?:", "(?:", "(?>", "(?=", "(?!"};
    return openings[below(std::size(openings))] + alternation(depth) + ")";
}

}  // namespace corvane_tests
