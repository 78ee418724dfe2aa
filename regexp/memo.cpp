#include "regexp/memo.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace {

std::uint64_t mix(std::uint64_t value) {
    value ^= value >> 32;
    value *= 0x9E3779B97F4A7C15u;
    return value ^ (value >> 29);
}

std::uint64_t keyOf(std::uint32_t row, std::size_t position) {
    return (static_cast<std::uint64_t>(row) << 32) | (position >> 6);
}

}  // namespace

RE_Memo_Table::Cell& RE_Memo_Table::cellOf(std::uint64_t key) {
    if ((used + 1) * 4 > cells.size() * 3) {
        grow();
    }
    Cell& cell = find(key);
    if (cell.generation != generation) {
        cell = {key, 0, generation};
        ++used;
    }
    return cell;
}

bool RE_Memo_Table::insert(std::uint32_t row, std::size_t position) {
    const std::uint64_t bit = std::uint64_t{1} << (position & 63);
    Cell& cell = cellOf(keyOf(row, position));
    if ((cell.bits & bit) != 0) {
        return false;
    }
    cell.bits |= bit;
    if (Filled* const known = filledOf(row)) {
        known->first -= position + 1 == known->first ? 1 : 0;
        known->last += position == known->last + 1 ? 1 : 0;
    }
    return true;
}

void RE_Memo_Table::insertAll(std::uint32_t row, std::size_t first, std::size_t last) {
    std::size_t position = first;
    do {
        const std::size_t end = std::min(position | 63, last);  // of what one cell holds of them
        cellOf(keyOf(row, position)).bits |= ~std::uint64_t{0} >> (63 - (end - position)) << (position & 63);
        position = end + 1;
    } while (position <= last);
    noteFilled(row, first, last);
}

bool RE_Memo_Table::contains(std::uint32_t row, std::size_t position) const {
    return (absentBits(row, position) >> (position & 63) & 1) == 0;
}

void RE_Memo_Table::clear() {
    ++generation;
    used = 0;
}

// The absent pairs among the 64 positions around this one.
std::uint64_t RE_Memo_Table::absentBits(std::uint32_t row, std::size_t position) const {
    if (used == 0) {
        return ~std::uint64_t{0};
    }
    const Cell& cell = cells[slotOf(keyOf(row, position))];
    return cell.generation == generation ? ~cell.bits : ~std::uint64_t{0};
}

std::size_t RE_Memo_Table::scanBack(std::uint32_t row, std::size_t first, std::size_t last) const {
    for (;;) {
        const std::uint64_t absent = absentBits(row, last) << (63 - (last & 63));
        if (absent != 0) {
            const auto back = static_cast<std::size_t>(std::countl_zero(absent));
            return last - first >= back ? last - back : nowhere;
        }
        if ((last >> 6) == (first >> 6)) {
            return nowhere;
        }
        last = (last & ~std::size_t{63}) - 1;
    }
}

std::size_t RE_Memo_Table::scanOn(std::uint32_t row, std::size_t first, std::size_t last) const {
    for (;;) {
        const std::uint64_t absent = absentBits(row, first) >> (first & 63);
        if (absent != 0) {
            const auto on = static_cast<std::size_t>(std::countr_zero(absent));
            return last - first >= on ? first + on : nowhere;
        }
        if ((last >> 6) == (first >> 6)) {
            return nowhere;
        }
        first = (first | 63) + 1;
    }
}

RE_Memo_Table::Filled* RE_Memo_Table::filledOf(std::uint32_t row) {
    Filled& place = filled[row % filled.size()];
    return place.row == row && place.generation == generation ? &place : nullptr;
}

// Extends what is known where it touches this, and otherwise takes its place.
void RE_Memo_Table::noteFilled(std::uint32_t row, std::size_t first, std::size_t last) {
    Filled* const known = filledOf(row);
    if (known == nullptr || first > known->last + 1 || known->first > last + 1) {
        filled[row % filled.size()] = {row, generation, first, last};
        return;
    }
    known->first = std::min(known->first, first);
    known->last = std::max(known->last, last);
}

std::size_t RE_Memo_Table::lastAbsent(std::uint32_t row, std::size_t first, std::size_t last) {
    std::size_t from = last;
    if (const Filled* const known = filledOf(row); known != nullptr && known->holds(last)) {
        if (known->first <= first) {
            return nowhere;
        }
        from = known->first - 1;
    }
    const std::size_t found = scanBack(row, first, from);
    const std::size_t lowest = found == nowhere ? first : found + 1;
    lookedOver += from - lowest + 1;
    if (lowest <= last) {
        noteFilled(row, lowest, last);
    }
    return found;
}

std::size_t RE_Memo_Table::firstAbsent(std::uint32_t row, std::size_t first, std::size_t last) {
    std::size_t from = first;
    if (const Filled* const known = filledOf(row); known != nullptr && known->holds(first)) {
        if (known->last >= last) {
            return nowhere;
        }
        from = known->last + 1;
    }
    const std::size_t found = scanOn(row, from, last);
    const std::size_t behind = found == nowhere ? last + 1 : found;
    lookedOver += behind - from;
    if (behind > first) {
        noteFilled(row, first, behind - 1);
    }
    return found;
}

// A cell of an older generation ends a probe like a free one: every key of this generation was put in front
// of it.
std::size_t RE_Memo_Table::slotOf(std::uint64_t key) const {
    const std::size_t mask = cells.size() - 1;
    std::size_t slot = static_cast<std::size_t>(mix(key)) & mask;
    while (cells[slot].generation == generation && cells[slot].key != key) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

void RE_Memo_Table::grow() {
    std::vector<Cell, RE_Allocator<Cell>> old(cells.empty() ? 64 : cells.size() * 2, Cell{0, 0, 0});
    old.swap(cells);
    for (const Cell& cell : old) {
        if (cell.generation == generation) {
            find(cell.key) = cell;
        }
    }
}

std::uint32_t RE_Memo_Rows::row(const Key& key) {
    const auto [place, isNew] = rows.try_emplace(key, next);
    if (isNew) {
        ++next;
    }
    return place->second;
}

void RE_Memo_Rows::clear() {
    rows.clear();
    next = first;
}

std::size_t RE_Memo_Rows::Hash::operator()(const Key& key) const {
    std::uint64_t hash = key.size();
    for (const std::size_t word : key) {
        hash = mix(hash + 0x9E3779B97F4A7C15u + word);
    }
    return static_cast<std::size_t>(hash);
}
