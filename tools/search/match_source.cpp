// Where matches come from: a search with one pattern, or with several at once.
#include "tools/search/match_source.h"

#include "tools/interrupt.h"

namespace tool {

MatchSource::MatchSource(std::span<const RE_Tree* const> trees) {
    if (trees.size() == 1) {
        one_.emplace(*trees.front(), std::u16string_view(u""));
    } else {
        many_.emplace(trees);
    }
}

void MatchSource::use(std::u16string_view text) {
    length_ = text.size();
    if (one_) {
        one_->use(text);
    } else {
        many_->use(text);
    }
}

std::optional<FoundMatch> MatchSource::find(std::size_t offset) {
    if (one_) {
        if (const RE_Results* const match = one_->find(offset)) return FoundMatch{match, 0};
        if (one_->wasInterrupted()) throw Interrupted();
        return std::nullopt;
    }
    if (const auto found = many_->find(offset)) return FoundMatch{found->match, found->pattern};
    if (many_->wasInterrupted()) throw Interrupted();
    return std::nullopt;
}

}  // namespace tool
