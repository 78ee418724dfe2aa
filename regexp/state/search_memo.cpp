// From the state of a search to rows, and the special position of a search that follows a match.
#include "regexp/state/search_memo.h"

#include "regexp/state/pass_word.h"
#include "regexp/state/search_info.h"

#include <algorithm>

namespace {

// All positions of a search share the row of a node, but for those at which a pass began that has consumed
// nothing yet: there the future differs, as an empty pass would be refused. The last such position up to
// `last`, or `nowhere`.
std::size_t lastPassStart(const RE_Search_Info& info, const RE_Node* node, std::size_t last) {
    std::size_t found = RE_Memo_Table::nowhere;
    for (const RE_Memo_Scope* scope = node->memoScope; scope != nullptr; scope = scope->parent) {
        if (scope->kind == RE_Memo_Scope::Kind::pass) {
            const std::size_t start = passStart(info.passWord(scope->index));
            const bool later = found == RE_Memo_Table::nowhere || start > found;
            found = start <= last && later ? start : found;
        }
    }
    return found;
}

}  // namespace

// The table of the innermost open body. Trap: the reference does not survive the opening of a deeper body.
RE_Memo_Table& RE_Search_Memo::table(const RE_Search_Info& info) {
    const std::size_t level = info.bodies.size();
    if (tables.size() <= level) {
        tables.resize(level + 1);
    }
    return tables[level];
}

bool RE_Search_Memo::insert(const RE_Search_Info& info, const RE_Node* node, std::size_t position) {
    RE_Memo_Table& states = isSetApart(info, position) ? apart : table(info);
    return states.insert(row(info, node, position), position);
}

// Bodies have tables of their own, which hold only failures: nothing of theirs is set apart.
bool RE_Search_Memo::isSetApart(const RE_Search_Info& info, std::size_t position) const {
    return position == setApart && info.bodies.empty();
}

// No search looks in front of the position that is set apart, where it began: it is the first of a range, if
// it is in the range at all.
std::size_t RE_Search_Memo::lastAbsent(const RE_Search_Info& info, std::uint32_t row, std::size_t first,
                                       std::size_t last) {
    if (!isSetApart(info, first)) {
        return table(info).lastAbsent(row, first, last);
    }
    const std::size_t found =
        first < last ? table(info).lastAbsent(row, first + 1, last) : RE_Memo_Table::nowhere;
    return found == RE_Memo_Table::nowhere ? apart.lastAbsent(row, first, first) : found;
}

std::size_t RE_Search_Memo::firstAbsent(const RE_Search_Info& info, std::uint32_t row, std::size_t first,
                                        std::size_t last) {
    if (!isSetApart(info, first)) {
        return table(info).firstAbsent(row, first, last);
    }
    if (!apart.contains(row, first)) {
        return first;
    }
    return first < last ? table(info).firstAbsent(row, first + 1, last) : RE_Memo_Table::nowhere;
}

// The special position has another row. It is taken for untried without a look, as `insert` decides about it.
std::size_t RE_Search_Memo::lastUntried(const RE_Search_Info& info, const RE_Node* node, std::size_t first,
                                        std::size_t last) {
    const std::size_t special = lastPassStart(info, node, last);
    if (special == last) {
        return last;
    }
    const bool within = special != RE_Memo_Table::nowhere && special >= first;
    const std::size_t found = lastAbsent(info, row(info, node, last), within ? special + 1 : first, last);
    return found == RE_Memo_Table::nowhere && within ? special : found;
}

// Where the range has a special position the caller tries its first position, and `insert` decides: rare, and
// exact.
std::size_t RE_Search_Memo::firstUntried(const RE_Search_Info& info, const RE_Node* node, std::size_t first,
                                         std::size_t last) {
    const std::size_t special = lastPassStart(info, node, last);
    if (special != RE_Memo_Table::nowhere && special >= first) {
        return first;
    }
    return firstAbsent(info, row(info, node, last), first, last);
}

void RE_Search_Memo::insertAll(const RE_Search_Info& info, const RE_Node* node, std::size_t first,
                               std::size_t last) {
    const std::size_t special = lastPassStart(info, node, last);
    if (special != RE_Memo_Table::nowhere && special >= first) {
        return;
    }
    const std::uint32_t states = row(info, node, last);
    if (isSetApart(info, first)) {
        apart.insert(states, first++);
    }
    if (first <= last) {
        table(info).insertAll(states, first, last);
    }
}

void RE_Search_Memo::clear(std::size_t level) {
    if (level < tables.size()) {
        tables[level].clear();
    }
}

// The set of states at the position is empty at first: none of them has been tried since the match.
void RE_Search_Memo::searchFrom(std::size_t position) {
    apart.clear();
    setApart = position;
}

// Rows are numbered anew, so the tables that used them have to go too. Outcomes have rows of their own and
// stay: they are kept only where nothing but the position decides about a body.
void RE_Search_Memo::forgetStates() {
    searchFrom(RE_Memo_Table::nowhere);
    for (RE_Memo_Table& states : tables) {
        states.clear();
    }
    rows.clear();
    placeNumbers.clear();
    textNumbers.clear();
}

void RE_Search_Memo::forgetSubject() {
    forgetStates();
    outcomes.clear();
    outcomeEnds.clear();
}

std::size_t RE_Search_Memo::bytes() const {
    std::size_t sum = apart.bytes() + outcomes.bytes() + pool.bytes();
    for (const RE_Memo_Table& states : tables) {
        sum += states.bytes();
    }
    return sum;
}

// The row of a state. Most nodes are in no counted loop and in no loop with empty passes, and nothing refers
// to a token: their own number is the row. Otherwise all that the future depends on is put into `key`, in an
// order that the node alone decides, and the combination is numbered.
std::uint32_t RE_Search_Memo::row(const RE_Search_Info& info, const RE_Node* node, std::size_t position) {
    if (node->memoScope == nullptr && info.facts->referencedTokens.empty()) {
        return node->memoIndex;
    }
    key.assign(1, node->memoIndex);
    for (const RE_Memo_Scope* scope = node->memoScope; scope != nullptr; scope = scope->parent) {
        switch (scope->kind) {
            case RE_Memo_Scope::Kind::counter:
                key.push_back(info.countAt(scope->counter, 0));
                break;
            case RE_Memo_Scope::Kind::pass:
                key.push_back(passState(info.passWord(scope->index), position));
                break;
            case RE_Memo_Scope::Kind::token:
                key.push_back(info.registers[scope->index]);
                break;
        }
    }
    for (const std::size_t token : info.facts->referencedTokens) {
        key.push_back(tokenState(info, token));
    }
    return rows.row(key);
}

// What the future may read of a token. A slot counts while it is out of effect, too, as the close of a higher
// token may bring it back. A reference by name tells a group that never closed from one that captured the
// empty text.
std::size_t RE_Search_Memo::tokenState(const RE_Search_Info& info, std::size_t token) {
    const RE_Token_Stack* const tokens = info.tokens;
    if (tokens == nullptr || token >= tokens->slots.size()) {
        return 0;
    }
    const std::size_t inEffect = token < tokens->count ? 1 : 0;
    const RE_TokenInfo* const slot = token < std::max(tokens->written, tokens->count)
                                         ? info.withinSubject(&tokens->slots[token])
                                         : nullptr;
    const bool tookPart = slot != nullptr && slot->tookPart;
    return (tookPart ? textNumber(info, {slot->start, slot->length}) : 0) * 2 + inEffect;
}

// Equal texts get equal numbers, wherever they occur in the subject; 0 is for no text. A text is read once
// for each place it occurs in, as the same token is queried at every choice. The views point into the
// subject, which the search outlives.
std::size_t RE_Search_Memo::textNumber(const RE_Search_Info& info, Place place) {
    const auto [known, isNew] = placeNumbers.try_emplace(place, 0);
    if (isNew) {
        info.noteScan(place.second);
        const std::u16string_view text(info.subjectBegin + place.first, place.second);
        known->second = textNumbers.try_emplace(text, textNumbers.size() + 1).first->second;
    }
    return known->second;
}

// Bodies that consumed nothing have no entry for their end: they are most of those that complete.
RE_Body_Outcome RE_Search_Memo::outcome(const RE_Node* node, std::size_t start) const {
    using Kind = RE_Body_Outcome::Kind;
    if (outcomes.contains(node->memoIndex * 2, start)) {
        return {Kind::failed, start};
    }
    if (!outcomes.contains(node->memoIndex * 2 + 1, start)) {
        return {};
    }
    const auto end = outcomeEnds.find({node->memoIndex, start});
    return {Kind::completed, end == outcomeEnds.end() ? start : end->second};
}

// A body has one outcome at a position, for the whole search: what it sees does not change.
void RE_Search_Memo::noteOutcome(const RE_Node* node, std::size_t start, RE_Body_Outcome outcome) {
    const bool completed = outcome.kind == RE_Body_Outcome::Kind::completed;
    outcomes.insert(node->memoIndex * 2 + (completed ? 1 : 0), start);
    if (completed && outcome.end != start) {
        outcomeEnds.try_emplace({node->memoIndex, start}, outcome.end);
    }
}
