// Patterns that are too long to be written in the table of workloads.
#pragma once

#include <cstddef>
#include <string>

namespace corvane_bench {

/// Alternatives of words, two dozen of which occur in English prose.
std::u16string wordAlternatives(std::size_t count);
/// A lexer of sixty alternatives for a language with braces; with a token for each if wanted.
std::u16string lexer(bool tokens);
/// The same lexer as a set, a pattern a line: the keywords are one of them.
std::u16string lexerSet();
/// Many counted groups in a row.
std::u16string countedGroups();

}  // namespace corvane_bench
