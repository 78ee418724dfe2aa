// The example of docs/replacement.md: two words swapped, with the number of replacements. The page quotes
// parts of this, and shows the output.
#include "regexp/regexp.h"

#include <cstdio>
#include <string>

int main() {
    const RE_Tree tree(u"(\\w+) (\\w+)", false);
    const RE_Replace swap(u"$2, $1");
    std::size_t matches = 0;
    const std::u16string text = swap.replace(u"Sherlock Holmes", tree, false, 0, &matches);
    std::printf("%s (%zu)\n", std::string(text.begin(), text.end()).c_str(), matches);
}
