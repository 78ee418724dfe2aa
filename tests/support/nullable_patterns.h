// Small random patterns about groups that may match the empty text, and how often. General random patterns are wide and
// repeat such groups rarely more than three times, so what depends on the order of a group's empty way, or on very many
// passes, is drawn too seldom there.
#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>

namespace corvane_tests {

class NullablePatterns {
public:
    /// Quantifiers are taken from the list, groups that capture are `mostGroups` at the most, and `anchors` are what
    /// is used for tests without width.
    NullablePatterns(std::uint64_t seed, std::span<const char* const> quantifiers, size_t mostGroups,
                     std::span<const char* const> anchors)
        : m_random(seed), m_quantifiers(quantifiers), m_mostGroups(mostGroups), m_anchors(anchors) {}

    std::string pattern();
    /// Of letters a and b, more of the former.
    std::u16string subject(size_t longest);
    size_t below(size_t bound) { return static_cast<size_t>(m_random() % bound); }

private:
    std::string alternation(int depth);
    std::string sequence(int depth);
    std::string item(int depth);
    std::string group(int depth);

    std::mt19937_64 m_random;
    std::span<const char* const> m_quantifiers;
    size_t m_mostGroups;
    std::span<const char* const> m_anchors;
    size_t m_groups = 0;
};

}  // namespace corvane_tests
