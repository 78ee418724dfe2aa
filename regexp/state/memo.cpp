// The table of tried states, and the numbers of rows.
#include "regexp/state/memo.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace {

constexpr std::uint64_t full = ~std::uint64_t{0};
// Six levels of words of 64 bits cover 2^36 positions: more than a key has room for.
constexpr unsigned levels = 6;

/// Spreads neighbouring keys, which differ in their lowest bits, over the table.
std::uint64_t mix(std::uint64_t value) {
    value ^= value >> 32;
    value *= 0x9E3779B97F4A7C15u;
    return value ^ (value >> 29);
}

// Rows take 32 bits, levels 3, and words 29. The latter limit a subject to 2^35 units, 64 GiB, beyond which
// rows would mix with each other.
std::uint64_t keyOf(std::uint32_t row, unsigned level, std::size_t word) {
    return (static_cast<std::uint64_t>(row) << 32) | (static_cast<std::uint64_t>(level) << 29) | word;
}

}  // namespace

// The word that holds bit number `at` of a level, taken into use if it was free. At most three quarters of
// the cells are used, so probes stay short and always end. The reference is valid until the next call.
std::uint64_t& RE_Memo_Table::wordOf(std::uint32_t row, unsigned level, std::size_t at) {
    if ((used + 1) * 4 > cells.size() * 3) {
        grow();
    }
    const std::uint64_t key = keyOf(row, level, at >> 6);
    Cell& cell = find(key);
    if (cell.generation != generation) {
        cell = {key, 0, generation};
        ++used;
    }
    return cell.bits;
}

bool RE_Memo_Table::insert(std::uint32_t row, std::size_t position) {
    const std::uint64_t bit = std::uint64_t{1} << (position & 63);
    std::uint64_t& word = wordOf(row, 0, position);
    if ((word & bit) != 0) {
        return false;
    }
    word |= bit;
    if (word == full) {
        noteFull(row, position);
    }
    return true;
}

// A word at a time: the first and the last of them in part. A word that was full before is noted in the level
// above already.
void RE_Memo_Table::insertAll(std::uint32_t row, std::size_t first, std::size_t last) {
    for (;;) {
        const std::size_t end = std::min(first | 63, last);  // of what one word holds of them
        std::uint64_t& word = wordOf(row, 0, first);
        const std::uint64_t before = std::exchange(word, word | full >> (63 - (end - first)) << (first & 63));
        if (word == full && before != full) {
            noteFull(row, first);
        }
        if (end == last) {
            return;
        }
        first = end + 1;
    }
}

// The word with this position has become full: its bit in the level above is set, which may fill that word in
// turn.
void RE_Memo_Table::noteFull(std::uint32_t row, std::size_t position) {
    std::size_t at = position;
    for (unsigned level = 1; level < levels; ++level) {
        at >>= 6;
        std::uint64_t& word = wordOf(row, level, at);
        word |= std::uint64_t{1} << (at & 63);
        if (word != full) {
            return;
        }
    }
}

bool RE_Memo_Table::contains(std::uint32_t row, std::size_t position) const {
    return (absentBits(row, 0, position) >> (position & 63) & 1) == 0;
}

void RE_Memo_Table::clear() {
    ++generation;
    used = 0;
}

// The clear bits of the word that holds bit number `at` of a level. A word that is not in use has only clear
// bits.
std::uint64_t RE_Memo_Table::absentBits(std::uint32_t row, unsigned level, std::size_t at) const {
    if (used == 0) {
        return full;
    }
    const Cell& cell = cells[slotOf(keyOf(row, level, at >> 6))];
    return cell.generation == generation ? ~cell.bits : full;
}

// Climbs the tree as long as the rest of a word is full, continues past it one level above, and descends to
// the first clear bit of what it finds there. A level that lies past `last` altogether ends the climb.
//
// Descending cannot meet a full word: the bit above it would be set.
std::size_t RE_Memo_Table::firstAbsent(std::uint32_t row, std::size_t first, std::size_t last) const {
    unsigned level = 0;
    std::size_t at = first;
    std::uint64_t absent = absentBits(row, level, at) >> (at & 63);
    while (absent == 0) {
        at = (at >> 6) + 1;
        if (++level == levels || at > last >> (6 * level)) {
            return nowhere;
        }
        absent = absentBits(row, level, at) >> (at & 63);
    }
    at += static_cast<std::size_t>(std::countr_zero(absent));
    for (; level > 0; --level) {
        at <<= 6;
        at += static_cast<std::size_t>(std::countr_zero(absentBits(row, level - 1, at)));
    }
    return at <= last ? at : nowhere;
}

// The mirror image, from `last` downwards.
std::size_t RE_Memo_Table::lastAbsent(std::uint32_t row, std::size_t first, std::size_t last) const {
    unsigned level = 0;
    std::size_t at = last;
    std::uint64_t absent = absentBits(row, level, at) << (63 - (at & 63));
    while (absent == 0) {
        at >>= 6;
        if (++level == levels || at <= first >> (6 * level)) {
            return nowhere;
        }
        --at;
        absent = absentBits(row, level, at) << (63 - (at & 63));
    }
    at -= static_cast<std::size_t>(std::countl_zero(absent));
    for (; level > 0; --level) {
        at = at << 6 | 63;
        at -= static_cast<std::size_t>(std::countl_zero(absentBits(row, level - 1, at)));
    }
    return at >= first ? at : nowhere;
}

// A cell of an older generation ends a probe like a free one: every key of this generation was inserted in
// front of it, as insertion stops at such a cell, too.
std::size_t RE_Memo_Table::slotOf(std::uint64_t key) const {
    const std::size_t mask = cells.size() - 1;
    std::size_t slot = static_cast<std::size_t>(mix(key)) & mask;
    while (cells[slot].generation == generation && cells[slot].key != key) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

// The new table is filled from the old one; cells of older generations are left behind.
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

// Numbers start again: whoever calls this has to empty the tables as well, or the new rows would be taken for
// old ones.
void RE_Memo_Rows::clear() {
    rows.clear();
    next = first;
}

std::size_t RE_Memo_Rows::Hash::operator()(const Key& key) const {
    std::uint64_t hash = key.size();
    for (const std::uint64_t word : key) {
        hash = mix(hash + 0x9E3779B97F4A7C15u + word);
    }
    return static_cast<std::size_t>(hash);
}
