// A pattern becomes faster by itself when it is searched with much. One that is known to be gets machine code and the
// automaton before its first search. docs/embedding.md quotes a part of this.
#include "regexp/regexp.h"

#include <memory>
#include <string>

int main() {
    RE_Tree tree(u"^(?:\\w+\\s?)*$", false);
    tree.makeMachineCode();
    tree.makeDfa();
    const std::u16string matching(1000, u'a');
    const std::unique_ptr<RE_Results> found(tree.match(matching, 0)), none(tree.match(matching + u"!", 0));
    return found != nullptr && none == nullptr ? 0 : 1;
}
