// A text in the two forms that the engines search, with its lines.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corvane_bench {

struct Line {
    std::u16string_view units;
    std::string_view bytes;
};

/// Not to be copied or moved: the lines point into it.
struct Text {
    explicit Text(std::u16string text);
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;

    std::u16string units;
    std::string bytes;        ///< the same in UTF-8
    std::vector<Line> lines;  ///< without line feeds; none for texts of more than a million units
};

/// UTF-8 of text without surrogates.
std::string toUtf8(std::u16string_view text);

}  // namespace corvane_bench
