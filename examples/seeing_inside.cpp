// The example of docs/seeing-inside.md: an observer that counts steps.
#include "regexp/regexp.h"

#include <cstdio>

struct Steps : RE_Observer {
    void observe(const RE_Trace_Event& event, const RE_Search_Info&) override {
        count += event.kind == RE_Trace_Kind::step ? 1 : 0;
    }
    std::size_t count = 0;
};

int main() {
    const RE_Tree tree(u"a(b+)c", false);
    const std::u16string text = u"xxabbc";
    Steps steps;
    const std::unique_ptr<RE_Results> match(tree.trace(text.data(), text.size(), 0, steps));
    std::printf("%zu steps, a match of length %zu\n", steps.count, match->matchLength);
}
