// Reading a subject by the automaton.
//
// Three ways of reading take turns, all of which lead to the same state at the same position: the table, a
// unit at a time; shuffles, for automata of few states; and scans over units that change nothing. The reading
// is cut into blocks between which steps are counted and the host is polled.
#include "regexp/dfa/dfa.h"

#include "regexp/dfa/alphabet.h"
#include "regexp/seek/scan.h"
#include "regexp/state/search_info.h"

#include <algorithm>
#include <utility>

// The state before the first unit depends on the unit in front of it, for anchors and look-behinds of one
// unit.
RE_Dfa::Entry RE_Dfa::startAt(const Rows& rows, const char16_t* p, const RE_Search_Info& info) const {
    return rows[info.atBegin(p) ? RE_Unit_Sides::begin : sides[letterOf(p[-1])]];
}

RE_Dfa::Answer RE_Dfa::matchEnd(const char16_t* p, RE_Search_Info& info) const {
    return run(startAt(attemptRows, p, info), p, info.subjectEnd, false, info);
}

RE_Dfa::Answer RE_Dfa::firstEnd(const char16_t* p, const char16_t* stop, RE_Search_Info& info) const {
    return run(startAt(searchRows, p, info), p, stop, true, info);
}

// Reads from `start` up to `limit`, with `first` only up to the first end of a match. A run that is broken
// off finds nothing. At the subject's end, which has a letter of its own, a match may end that ends nowhere
// else.
RE_Dfa::Answer RE_Dfa::run(Entry row, const char16_t* start, const char16_t* limit, bool first,
                           RE_Search_Info& info) const {
    Place place{start, row, nullptr};
    while (place.p < limit && place.row != dead) {
        const char16_t* const from = place.p;
        const auto left = static_cast<std::size_t>(limit - from);
        const char16_t* const stop = from + std::min(left, RE_SCAN_POLL_UNITS);
        while (place.p < stop && place.row != dead) {
            const Entry before = place.row;
            readSome(place, stop, first);
            if (place.row == before && place.p < stop) {
                skipStay(place, stop);
            }
        }
        info.noteScan(static_cast<std::size_t>(place.p - from));
        if (place.p == stop && info.pollScan()) {
            return {nullptr, 0};
        }
    }
    const bool endsThere =
        place.row != dead && limit == info.subjectEnd && (table[place.row + rowLength - 1] & accepts) != 0;
    return {endsThere ? info.subjectEnd : place.end, static_cast<std::size_t>(place.p - start)};
}

// Some units, by shuffles where they serve. A block that shuffles could not pass is read by the table.
void RE_Dfa::readSome(Place& place, const char16_t* stop, bool first) const {
    constexpr std::ptrdiff_t some = RE_Shuffle_Table::blockUnits;
    if (shuffles.rows.empty() || !readByShuffles(place, stop)) {
        readByTable(place, place.p + std::min(stop - place.p, some), first);
    }
}

// Whether any unit was passed. No match may end on the way: shuffles stop in front of such a block.
bool RE_Dfa::readByShuffles(Place& place, const char16_t* stop) const {
    auto state = static_cast<std::uint8_t>(place.row / rowLength);
    const char16_t* const p = shuffleOver(shuffles, place.p, stop, state);
    place.row = static_cast<Entry>(state * rowLength);
    return p != std::exchange(place.p, p);
}

// The inner loop of the table. `accepts` speaks of the place before the unit, hence `end = p`.
void RE_Dfa::readByTable(Place& place, const char16_t* stop, bool first) const {
    const Entry* const rows = table.data();
    const char16_t* p = place.p;
    Entry row = place.row;
    for (; p < stop && row != dead; ++p) {
        row = rows[row + letterOf(*p)];
        if ((row & accepts) != 0) {
            place.end = p;
            row = first ? dead : row & ~accepts;
        }
    }
    place.p = p;
    place.row = row;
}

/// Passes over all units that lead back to the state. If a match may end before each of them, the last one
/// counts.
void RE_Dfa::skipStay(Place& place, const char16_t* stop) const {
    const Stay* const known = stays[place.row / rowLength].get();
    if (known == nullptr) {
        return;
    }
    const char16_t* const p = findClass(place.p, stop, known->leaves);
    if (known->matches && p > place.p) {
        place.end = p - 1;
    }
    place.p = p;
}
