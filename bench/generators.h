// Texts and lists of words made from fixed seeds.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace corvane_bench {

std::u16string makeLog();       ///< lines of a web server, some with keys and values or an error
std::u16string makeTable();     ///< comma-separated fields, some of them quoted
std::u16string makeCyrillic();  ///< words and sentences
std::u16string makeChinese();   ///< sentences without blanks
std::u16string makeMarkup();    ///< elements with attributes
std::u16string makeSource();    ///< functions of a language with braces
std::u16string makeShort();     ///< lines of 4 to 24 units: words, numbers, dates, addresses

/// Distinct words in lower case of 5 to 12 letters, none the beginning of another. Sorted.
std::vector<std::u16string> makeWords(std::size_t count);

}  // namespace corvane_bench
