// Patterns that are too long for a table: alternatives of many words, a lexer, counted groups. Each is the
// same in every run and means the same in every dialect.
#include "bench/patterns.h"

#include "bench/generators.h"

#include <string_view>

namespace corvane_bench {
namespace {

/// None of them is the beginning of another.
constexpr std::u16string_view PROSE_WORDS[] = {
    u"adventure", u"bicycle",  u"carriage",   u"daughter", u"evidence", u"familiar",
    u"gentleman", u"handsome", u"indeed",     u"justice",  u"kitchen",  u"lantern",
    u"marriage",  u"nothing",  u"opposite",   u"perhaps",  u"question", u"remarked",
    u"something", u"through",  u"understand", u"village",  u"whisper",  u"yesterday"};

/// Keywords come before names and longer operators before shorter ones, as the first alternative wins.
constexpr std::u16string_view LEXEMES[] = {uR"(//[^\n]*)",
                                           uR"(/\*(?:[^*]|\*[^/])*\*/)",
                                           uR"("(?:[^"\\\n]|\\.)*")",
                                           uR"('(?:[^'\\\n]|\\.)')",
                                           u"break\\b",
                                           u"case\\b",
                                           u"char\\b",
                                           u"const\\b",
                                           u"continue\\b",
                                           u"default\\b",
                                           u"do\\b",
                                           u"double\\b",
                                           u"else\\b",
                                           u"enum\\b",
                                           u"extern\\b",
                                           u"float\\b",
                                           u"for\\b",
                                           u"goto\\b",
                                           u"if\\b",
                                           u"int\\b",
                                           u"long\\b",
                                           u"return\\b",
                                           u"short\\b",
                                           u"sizeof\\b",
                                           u"static\\b",
                                           u"struct\\b",
                                           u"switch\\b",
                                           u"while\\b",
                                           u"void\\b",
                                           uR"([A-Za-z_][A-Za-z0-9_]*)",
                                           uR"(0[xX][0-9A-Fa-f]+)",
                                           uR"(\d+\.\d*(?:[eE][+-]?\d+)?)",
                                           uR"(\d+)",
                                           uR"(<<=)",
                                           uR"(>>=)",
                                           uR"(->)",
                                           uR"(\+\+)",
                                           uR"(--)",
                                           uR"(<<)",
                                           uR"(>>)",
                                           uR"(<=)",
                                           uR"(>=)",
                                           uR"(==)",
                                           uR"(!=)",
                                           uR"(&&)",
                                           uR"(\|\|)",
                                           uR"(\+=)",
                                           uR"(-=)",
                                           uR"(\*=)",
                                           uR"(/=)",
                                           uR"(%=)",
                                           uR"([-+*/%])",
                                           uR"([<>=!&|^~])",
                                           uR"([()])",
                                           uR"([{}])",
                                           uR"([\[\]])",
                                           uR"([;,])",
                                           uR"([.:?])",
                                           uR"(\n)",
                                           uR"([ \t]+)"};
static_assert(std::size(LEXEMES) == 60);

/// Our dialect says the end of a word differently; a look ahead says it in all of them.
std::u16string wordEndAsLookahead(std::u16string_view lexeme) {
    std::u16string text(lexeme);
    if (text.ends_with(u"\\b")) {
        text.replace(text.size() - 2, 2, u"(?!\\w)");
    }
    return text;
}

}  // namespace

std::u16string wordAlternatives(std::size_t count) {
    std::u16string pattern;
    for (const std::u16string& word : makeWords(count - std::size(PROSE_WORDS))) {
        pattern += word + u"|";
    }
    for (const std::u16string_view word : PROSE_WORDS) {
        pattern += std::u16string(word) + u"|";
    }
    pattern.pop_back();
    return pattern;
}

std::u16string lexer(bool tokens) {
    std::u16string pattern;
    for (const std::u16string_view lexeme : LEXEMES) {
        pattern += (tokens ? u"(" : u"(?:") + wordEndAsLookahead(lexeme) + u")|";
    }
    pattern.pop_back();
    return pattern;
}

std::u16string lexerSet() {
    std::u16string keywords, others;
    for (const std::u16string_view lexeme : LEXEMES) {
        if (lexeme.ends_with(u"\\b")) {
            keywords +=
                (keywords.empty() ? u"(?:" : u"|") + std::u16string(lexeme.substr(0, lexeme.size() - 2));
        } else {
            others += u"\n" + std::u16string(lexeme);
        }
    }
    return keywords + u")(?!\\w)" + others;
}

std::u16string countedGroups() {
    std::u16string pattern;
    for (int i = 0; i < 100; ++i) {
        pattern += u"(?:[a-f]{2,9}\\d{1,4}|x{3}[^,]{0,20})-?";
    }
    return pattern;
}

}  // namespace corvane_bench
