// Random choices that are the same with every standard library: the generator is specified exactly, the
// library's distributions are not, so none is used.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace corvane_bench {

class Random {
public:
    explicit Random(std::uint32_t seed) : m_engine(seed) {}

    /// From 0 to `count` - 1.
    std::size_t below(std::size_t count) { return m_engine() % count; }
    std::size_t between(std::size_t least, std::size_t most) { return least + below(most - least + 1); }
    bool oneIn(std::size_t count) { return below(count) == 0; }

    template <std::size_t Count>
    std::u16string_view pick(const std::u16string_view (&choices)[Count]) {
        return choices[below(Count)];
    }

    /// A decimal number with exactly this many digits.
    std::u16string digits(std::size_t count) {
        std::u16string text;
        for (std::size_t i = 0; i < count; ++i) {
            text += static_cast<char16_t>(u'0' + below(10));
        }
        return text;
    }

    /// Letters from `first` on, of which there are `count` kinds.
    std::u16string letters(char16_t first, std::size_t kinds, std::size_t count) {
        std::u16string text;
        for (std::size_t i = 0; i < count; ++i) {
            text += static_cast<char16_t>(first + below(kinds));
        }
        return text;
    }

    /// Consonants and vowels in turn, which gives syllables that look like a language.
    std::u16string word(std::size_t least, std::size_t most) {
        static constexpr std::u16string_view consonants = u"bcdfghlmnprstvw";
        static constexpr std::u16string_view vowels = u"aeiou";
        std::u16string text;
        for (std::size_t length = between(least, most); text.size() < length;) {
            text +=
                text.size() % 2 == 0 ? consonants[below(consonants.size())] : vowels[below(vowels.size())];
        }
        return text;
    }

private:
    std::mt19937 m_engine;
};

}  // namespace corvane_bench
