// The example of docs/pattern-sets.md: a lexer whose kinds of tokens are patterns, and the page's output.
#include "regexp/regexp.h"

#include <cstddef>
#include <cstdio>
#include <string>

namespace {

void print(const char* kind, std::u16string_view text) {
    std::printf("%s %s\n", kind, std::string(text.begin(), text.end()).c_str());
}

void lex(std::u16string_view text) {
    const char* const kinds[] = {"keyword", "name", "number", "string", "sign"};
    const RE_Tree trees[] = {RE_Tree(u"(?:if|else|return)(?!\\w)", false), RE_Tree(u"[A-Za-z_]\\w*", false),
                             RE_Tree(u"\\d+(?:\\.\\d+)?", false), RE_Tree(u"\"[^\"]*\"", false),
                             RE_Tree(u"[-+*/=<>(){};]", false)};
    RE_Pattern_Set set;
    for (const RE_Tree& tree : trees) {
        set.add(tree);
    }
    set.use(text);
    std::size_t end = 0;
    while (const auto found = set.find(end)) {
        print(kinds[found->pattern], reMatchText(*found->match));
        end = found->match->nextIndex();
    }
}

/// The next keyword or string that begins in the first line; the string may end in another one.
void lookIntoTheFirstLine(std::u16string_view text) {
    const RE_Tree keyword(u"if|else", false), string(u"\"[^\"]*\"", false);
    RE_Pattern_Set set;
    set.add(keyword);
    set.add(string);
    set.use(text);
    const std::size_t lineEnd = text.find(u'\n');
    for (auto found = set.find(0, lineEnd); found; found = set.find(found->match->nextIndex(), lineEnd)) {
        std::printf("%zu to %zu\n", found->match->matchStart,
                    found->match->matchStart + found->match->matchLength);
    }
}

}  // namespace

int main() {
    lex(u"if (iffy < 2.5) return \"if\";");
    lookIntoTheFirstLine(u"if \"one\ntwo\" else \"three\"");
}
