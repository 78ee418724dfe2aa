// Counts of loops, and the guard of the choices of nodes that were made by hand.
//
// The parser's loops guard empty passes by nodes of their own and are told apart by the memo. A node that
// nobody vouches for is guarded by what is on the stack: the same node at the same position is refused.
#include "regexp/state/node_notes.h"

#include "regexp/graph/node.h"
#include "regexp/state/search_info.h"

void RE_Node_Notes::startToken(std::size_t index, const char16_t* name, const char16_t* p) {
    if (tokens != nullptr) {
        tokens->set_start(index, name, indexOf(p));
    }
}

void RE_Node_Notes::endToken(std::size_t index, const char16_t* p, bool invalidate) {
    if (invalidate) {
        for (std::size_t k = index + 1; k < visited.size(); ++k) {
            visited[k].clear();
        }
    }
    if (tokens != nullptr) {
        tokens->set_end(index, indexOf(p));
    }
}

std::uint64_t& RE_Node_Notes::topCount(const RE_Node* counter) {
    attemptsLeaveNotes = true;
    Counts& counts = counterStacks[counter];
    if (counts.empty()) {
        counts.push_back(0);
    }
    return counts.back();
}

void RE_Node_Notes::decrementCount(const RE_Node* counter) {
    std::uint64_t& count = topCount(counter);
    if (count > 0) {
        --count;
    }
}

std::uint64_t RE_Node_Notes::countAt(const RE_Node* counter, std::size_t depth) const {
    const auto counts = counterStacks.find(counter);
    if (counts == counterStacks.end() || depth >= counts->second.size()) {
        return 0;
    }
    return counts->second[counts->second.size() - 1 - depth];
}

void RE_Node_Notes::popCount(const RE_Node* counter) {
    const auto counts = counterStacks.find(counter);
    if (counts != counterStacks.end() && !counts->second.empty()) {
        counts->second.pop_back();
    }
}

void RE_Node_Notes::forgetNotes() {
    for (auto& [counter, counts] : counterStacks) {
        counts.clear();
    }
    for (States& states : visited) {
        states.clear();
    }
}

bool RE_Node_Notes::pushUnguarded(const RE_Node* node, const char16_t* position, bool newRecord) {
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

bool RE_Node_Notes::isDuplicate(const RE_Node* node, const char16_t* position) const {
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

void RE_Node_Notes::writeReused(const RE_Node* node, const char16_t* position) {
    std::int32_t own = backtrack.top;
    while (own >= backtrack.base && backtrack.records[static_cast<std::size_t>(own)].node != node) {
        --own;
    }
    if (own >= backtrack.base) {
        while (backtrack.top > own) {
            const RE_Node* dropped = backtrack.records[static_cast<std::size_t>(backtrack.top--)].node;
            if (dropped->isCounter) {
                dropped->onBacktrack(whole());
            }
        }
        --backtrack.top;
    }
    pushRecord(node, position, 0);
}
