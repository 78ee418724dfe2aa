#include "regexp/match_sequence.h"

#include "regexp/tree.h"

// The state is told of interrupts only while a search runs: a request that comes between two searches is for
// the caller to see.
RE_Match_Sequence::RE_Match_Sequence(const RE_Tree& pattern, std::u16string_view subject)
    : tree(pattern),
      info(subject.data() != nullptr ? subject.data() : u"", subject.size(), pattern.tokenCount, &table,
           false) {
    if (info.tokens == nullptr) {
        throw std::bad_alloc();
    }
    if (tree.root != nullptr) {
        info.prepare(*tree.facts);
    }
    info.rejectEmpty = !tree.allowEmptyMatch;
    info.checkInterrupts = tree.interruptible;
}

RE_Results* RE_Match_Sequence::find(std::size_t offset) {
    if (tree.root == nullptr) {
        return nullptr;
    }
    if (view) {
        info.searchBehind(view->matchStart + view->matchLength);
    }
    info.putInterruptAside();
    std::size_t length = 0;
    const bool found = tree.findMatch(info, offset, length) && !info.pollInterrupt();
    info.handInterruptBack();
    if (!found) {
        return nullptr;
    }
    return &view.emplace(&info, info.matchStart, length, false);
}
