// The example of README.md: all matches of a text with their tokens, and all of them replaced. The page
// quotes the whole program below this comment, and shows its output.
#include "regexp/regexp.h"

#include <cstdio>
#include <string>

int main() {
    const std::u16string text = u"xxabbc, abc and ac";
    const RE_Tree tree(u"a(b+)c", false);  // false: case counts
    for (auto& match : tree.find_all(text)) {
        const std::u16string_view token = reTokenText(match, 0);  // $1 in a pattern is token 0 here
        const std::string ascii(token.begin(), token.end());
        std::printf("[%zu,%zu] $1 %s\n", match.matchStart, match.matchLength, ascii.c_str());
    }
    const std::u16string changed = RE_Replace(u"<$1>").replace(text, tree, false, 0);  // 0: every match
    std::printf("%s\n", std::string(changed.begin(), changed.end()).c_str());
}
