// Choices of a search: leaving them, refusing those that were tried before, taking them up again.
#include "regexp/state/search_info.h"

#include <utility>

const char16_t* RE_Search_Info::lastUntried(const RE_Node* node, const char16_t* first,
                                            const char16_t* last) {
    if (memo == nullptr) {
        return last;
    }
    const std::size_t found = memo->lastUntried(*this, node, indexOf(first), indexOf(last));
    refusals += found == indexOf(last) ? 0 : 1;
    return found == RE_Memo_Table::nowhere ? nullptr : subjectBegin + found;
}

const char16_t* RE_Search_Info::firstUntried(const RE_Node* node, const char16_t* first,
                                             const char16_t* last) {
    if (memo == nullptr) {
        return first;
    }
    const std::size_t found = memo->firstUntried(*this, node, indexOf(first), indexOf(last));
    refusals += found == indexOf(first) ? 0 : 1;
    return found == RE_Memo_Table::nowhere ? nullptr : subjectBegin + found;
}

void RE_Search_Info::noteFailed(const RE_Node* node, const char16_t* first, const char16_t* last) {
    if (memo != nullptr && first <= last) {
        memo->insertAll(*this, node, indexOf(first), indexOf(last));
    }
}

bool RE_Search_Info::inquire() {
    const bool goesOn = inquiry.goesOn(*this);
    if (!goesOn) {
        resetForStart(matchStart);
    }
    return goesOn;
}

RE_Backtrack_Record* RE_Search_Info::popChoice() {
    while (backtrack.top >= backtrack.base) {
        const std::size_t slot = static_cast<std::size_t>(backtrack.top--);
        if (pollInterrupt()) {
            return nullptr;
        }
        if (!countChoice()) {
            return nullptr;
        }
        countTowardsMemo();
        RE_Backtrack_Record* record = &backtrack.records[slot];
        undoTo(backtrack.marks[slot].trailHeight);
        if (tokens != nullptr) {
            tokens->count = record->savedTokens;
        }
        if (!record->node->isCounter) {
            return record;
        }
        record->node->onBacktrack(*this);
        if (record->node->alternativeNode() != nullptr) {
            return record;
        }
    }
    return nullptr;
}

void RE_Search_Info::beginMemo() {
    memo = std::move(idleMemo);
    if (memo == nullptr) {
        memo = std::make_unique<RE_Search_Memo>(facts->firstCombinedRow());
    }
    attemptsLeaveNotes = knowsSubject = true;
}

// --- nodes put together by hand ---
//
// The parser's loops guard empty passes by nodes of their own and are told apart by the memo. A node that
// nobody vouches for is guarded by what stands on the stack: the same node at the same position is refused.

bool RE_Search_Info::pushUnguarded(const RE_Node* node, const char16_t* position, bool newRecord) {
    if (node->memoised) {
        const std::size_t count = tokens != nullptr ? tokens->count : 0;
        attemptsLeaveNotes = true;
        if (visited.size() <= count) {
            visited.resize(count + 1);
        }
        if (!visited[count].insert({node, position}).second) {
            return refuse();
        }
    }
    if (isDuplicate(node, position)) {
        return refuse();
    }
    if (newRecord) {
        pushRecord(node, position, 0);
    } else {
        writeReused(node, position);
    }
    return true;
}

bool RE_Search_Info::isDuplicate(const RE_Node* node, const char16_t* position) const {
    if (node->isCounter && !node->isStateCounter()) {
        return false;
    }
    std::size_t depth = 0;
    for (std::int32_t i = backtrack.top; i >= 0; --i) {
        const RE_Backtrack_Record& record = backtrack.records[static_cast<std::size_t>(i)];
        if (record.position != position) {
            return false;
        }
        if (record.node == node) {
            if (!node->isCounter || node->refusesRepeatAt(depth)) {
                return true;
            }
        }
        if (record.node->isCounter) {
            if (!node->reuseRecord && record.node->isStateCounter()) {
                return false;
            }
            if (node->isCounter && record.node->pairsWith(node)) {
                ++depth;
            }
        }
    }
    return false;
}

void RE_Search_Info::writeReused(const RE_Node* node, const char16_t* position) {
    std::int32_t own = backtrack.top;
    while (own >= backtrack.base && backtrack.records[static_cast<std::size_t>(own)].node != node) {
        --own;
    }
    if (own >= backtrack.base) {
        while (backtrack.top > own) {
            const RE_Node* dropped = backtrack.records[static_cast<std::size_t>(backtrack.top--)].node;
            if (dropped->isCounter) {
                dropped->onBacktrack(*this);
            }
        }
        --backtrack.top;
    }
    pushRecord(node, position, 0);
}
