#include "regexp/search_memo.h"

#include "regexp/nodes/loop_pass.h"
#include "regexp/search_info.h"

#include <string_view>

namespace {

// All positions of a search share the row of a node, but for those at which a pass began that has consumed nothing
// yet: there the future differs. The last of them up to `last`, or `nowhere`.
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

RE_Memo_Table& RE_Search_Memo::table(const RE_Search_Info& info) {
    const std::size_t level = info.bodies.size();
    if (tables.size() <= level) {
        tables.resize(level + 1);
    }
    return tables[level];
}

bool RE_Search_Memo::insert(const RE_Search_Info& info, const RE_Node* node, std::size_t position) {
    return table(info).insert(row(info, node, position), position);
}

std::size_t RE_Search_Memo::lastUntried(const RE_Search_Info& info, const RE_Node* node, std::size_t first,
                                        std::size_t last) {
    const std::size_t special = lastPassStart(info, node, last);
    if (special == last) {
        return last;
    }
    const bool within = special != RE_Memo_Table::nowhere && special >= first;
    const std::size_t found =
        table(info).lastAbsent(row(info, node, last), within ? special + 1 : first, last);
    return found == RE_Memo_Table::nowhere && within ? special : found;
}

std::size_t RE_Search_Memo::firstUntried(const RE_Search_Info& info, const RE_Node* node, std::size_t first,
                                         std::size_t last) {
    const std::size_t special = lastPassStart(info, node, last);
    if (special != RE_Memo_Table::nowhere && special >= first) {
        return first;
    }
    return table(info).firstAbsent(row(info, node, last), first, last);
}

RE_Measured_Run& RE_Search_Memo::run(const RE_Node* node) {
    if (runs.size() <= node->memoIndex) {
        runs.resize(node->memoIndex + std::size_t{1});
    }
    return runs[node->memoIndex];
}

void RE_Search_Memo::clear(std::size_t level) {
    if (level < tables.size()) {
        tables[level].clear();
    }
}

void RE_Search_Memo::forgetStates() {
    for (RE_Memo_Table& states : tables) {
        states.clear();
    }
}

void RE_Search_Memo::forgetRuns(std::uint32_t firstRow) {
    if (runs.size() > firstRow) {
        runs.resize(firstRow);
    }
}

// Most nodes stand in no counted loop and no loop with empty passes, and nothing refers to a token: their own number
// is the row.
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
        key.push_back(textNumber(info, token));
    }
    return rows.row(key);
}

// Equal texts get equal numbers, wherever they stand in the subject; 0 stands for no text. A slot that was skipped has
// lost its name, which a reference by name can tell from an empty token.
std::size_t RE_Search_Memo::textNumber(const RE_Search_Info& info, std::size_t token) {
    const RE_TokenInfo* slot = info.getToken(token);
    if (slot == nullptr) {
        return 0;
    }
    const std::u16string_view text(info.subjectBegin + slot->start, slot->length);
    const std::size_t named = slot->name != nullptr ? 1 : 0;
    const std::size_t hash = std::hash<std::u16string_view>()(text);
    const auto [first, last] = textNumbers.equal_range(hash);
    for (auto known = first; known != last; ++known) {
        const Text& other = texts[known->second - 1];
        if (text == std::u16string_view(info.subjectBegin + other.first, other.second)) {
            return known->second * 2 + named;
        }
    }
    texts.emplace_back(slot->start, slot->length);
    textNumbers.emplace(hash, texts.size());
    return texts.size() * 2 + named;
}
