// The matches of one subject from left to right.
#include "tools/match_walker.h"

#include <new>

namespace tool {

std::unique_ptr<RE_Results> MatchWalker::next() {
    while (from_ <= subject_.size()) {
        std::unique_ptr<RE_Results> found(tree_.match(subject_.data(), subject_.size(), from_, &seekTable_));
        if (!found) break;
        if (found->tokens == nullptr) throw std::bad_alloc();
        from_ = found->nextIndex();
        const std::size_t end = found->matchStart + found->matchLength;
        // An empty match right where the previous one ended says nothing new.
        if (previousEnd_ == end) continue;
        previousEnd_ = end;
        return found;
    }
    from_ = subject_.size() + 1;
    return nullptr;
}

}  // namespace tool
