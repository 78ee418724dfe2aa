// UTF-16 text in tests: building it from ASCII, and printing it so that a failure can be pasted back.
#pragma once

#include <string>
#include <string_view>

namespace corvane_tests {

/// Widens ASCII text unit by unit.
std::u16string widen(std::string_view text);

/// Printable ASCII stays itself; every other unit becomes {{U+XXXX}}, the notation of the case files.
std::string printable(std::u16string_view text);

/// Expands the case-file notation: {{U+XXXX}} is one unit, {{text*N}} is N copies of text.
std::u16string expand(std::string_view text);

std::u16string repeated(std::u16string_view text, size_t count);

/// Every subject over the alphabet of at most `maxLength` units, the empty one first, shortest first.
template <typename Visit>
void forEachSubject(std::u16string_view alphabet, size_t maxLength, const Visit& visit) {
    std::u16string current;
    visit(current);
    for (size_t length = 1; length <= maxLength; ++length) {
        current.assign(length, alphabet.front());
        std::u16string indices(length, u'\0');
        for (bool more = true; more;) {
            visit(current);
            size_t place = length;
            more = false;
            while (place > 0 && !more) {
                --place;
                more = indices[place] + 1U < alphabet.size();
                indices[place] = more ? static_cast<char16_t>(indices[place] + 1U) : u'\0';
                current[place] = alphabet[indices[place]];
            }
        }
    }
}

}  // namespace corvane_tests
