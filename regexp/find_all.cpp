// Walks from match to match, and what follows from such a walk: splitting, matching at one place, texts of tokens.
#include "regexp/find_all.h"

#include "regexp/base/search_limits.h"
#include "regexp/search/search.h"
#include "regexp/search/thread_state.h"

#include <new>

namespace {

// A text of no length may come without data, which is no subject to the engine.
const char16_t* dataOf(std::u16string_view text) {
    return text.data() != nullptr ? text.data() : u"";
}

std::u16string_view part(const RE_Results& match, std::size_t start, std::size_t length) {
    const std::size_t size = static_cast<std::size_t>(match.subjectEnd - match.subjectBegin);
    if (match.subjectBegin == nullptr || start > size || length > size - start) {
        return {};
    }
    return {match.subjectBegin + start, length};
}

}  // namespace

RE_Match_Range::RE_Match_Range(const RE_Tree& pattern, std::u16string_view text, std::size_t offset,
                               const RE_Search_Limits* limits)
    : sequence(pattern, text, limits), size(text.size()), next(offset) {}

RE_Match_Range::Iterator RE_Match_Range::begin() {
    if (!begun) {
        begun = true;
        advance();
    }
    return Iterator(*this);
}

void RE_Match_Range::advance() {
    while (next <= size) {
        current = sequence.find(next);
        if (current == nullptr) {
            break;
        }
        next = current->nextIndex();
        const std::size_t end = current->matchStart + current->matchLength;
        if (previousEnd != end) {
            previousEnd = end;
            return;
        }
    }
    current = nullptr;
    next = size + 1;
}

RE_Match_Range RE_Tree::find_all(std::u16string_view text, std::size_t offset) const& {
    return RE_Match_Range(*this, text, offset);
}

RE_Match_Range RE_Tree::find_all(std::u16string_view text, std::size_t offset,
                                 const RE_Search_Limits& limits) const& {
    return RE_Match_Range(*this, text, offset, &limits);
}

std::unique_ptr<RE_Results> RE_Tree::match_at(std::u16string_view text, std::size_t position) const {
    if (position > text.size() || root == nullptr) {
        return nullptr;
    }
    RE_Seek_Table table;
    RE_Thread_State state(*facts, {dataOf(text), text.size()}, &table, interruptible);
    RE_Search_Info& info = state.info();
    if (info.tokens == nullptr) {
        throw std::bad_alloc();
    }
    std::size_t length = 0;
    const bool found = attemptAt(*facts, info, info.subjectBegin + position, length);
    state.keep();
    if (!found) {
        return nullptr;
    }
    return std::make_unique<RE_Results>(&info, info.matchStart, length, true);
}

std::vector<std::u16string_view> RE_Tree::split(std::u16string_view text) const {
    std::vector<std::u16string_view> parts;
    std::size_t from = 0;
    for (const RE_Results& match : find_all(text)) {
        const bool atEdge = match.matchStart == 0 || match.matchStart == text.size();
        if (match.matchLength == 0 && atEdge) {
            continue;
        }
        parts.push_back(text.substr(from, match.matchStart - from));
        from = match.matchStart + match.matchLength;
    }
    parts.push_back(text.substr(from));
    return parts;
}

std::u16string_view reMatchText(const RE_Results& match) {
    return part(match, match.matchStart, match.matchLength);
}

std::u16string_view reTokenText(const RE_Results& match, std::size_t index) {
    if (!match.tookPart(index)) {
        return {};
    }
    const RE_TokenInfo& token = match.tokens->slots[index];
    return part(match, token.start, token.length);
}

std::u16string_view reTokenText(const RE_Results& match, std::u16string_view name) {
    return match.tokens != nullptr ? reTokenText(match, match.tokens->find(name)) : std::u16string_view();
}
