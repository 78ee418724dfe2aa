// A choice between branches that looks at the next unit first: the branches that cannot begin with it are not
// tried.
//
// Units are looked up in a table of 130 columns: one for each unit below 128, one for all others, and one for
// the end of the subject. Each column has a list of the ways that can begin there, in the order of the
// pattern.
//
// Invariant: a way that is not in the list of a column fails there. So leaving it out changes no answer, and
// a column with one way needs no record.
#pragma once

#include "regexp/state/search_info.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

class RE_Unit_Set;

/// What a branch can begin with, as far as a table of the commonest units shows.
struct RE_Branch_Start {
    /// The units of ASCII, which are most units of most texts. A larger table would cost each pattern more
    /// memory.
    static constexpr std::size_t tableUnits = 128;
    static constexpr std::size_t others = tableUnits;     ///< the column of all units past the table
    static constexpr std::size_t atEnd = tableUnits + 1;  ///< that of the subject's end
    static constexpr std::size_t columns = tableUnits + 2;

    void add(char16_t unit) { addColumn(std::min<std::size_t>(unit, others)); }
    /// Adds the columns of all units of the set.
    void addAll(const RE_Unit_Set& units);
    void addEnd() { addColumn(atEnd); }
    /// The branch may begin anywhere, with any unit or with none.
    void addEverything();
    /// How many columns it can begin with.
    std::size_t count() const;
    bool holds(std::size_t column) const { return (bits[column / 64] >> (column % 64) & 1) != 0; }
    /// Adds the columns that are not like the one before them, where the one before the first holds nothing.
    /// May add the number of columns itself, where the last column is held.
    void addChangesTo(RE_Branch_Start& changes) const;
    template <class Visit>
    void forEachColumn(Visit visit) const {
        for (std::size_t i = 0; i < bits.size(); ++i) {
            for (std::uint64_t left = bits[i]; left != 0; left &= left - 1) {
                visit(64 * i + static_cast<std::size_t>(std::countr_zero(left)));
            }
        }
    }

private:
    void addColumn(std::size_t column) { bits[column / 64] |= std::uint64_t{1} << (column % 64); }

    std::array<std::uint64_t, (columns + 63) / 64> bits{};
};

/// Takes the place of a chain of splits. Its record holds the position of the choice, its word the place in
/// `places` of the branch to try next. It consults the memo, under the row of the first split, only where a
/// way is open: a state that fails at once is not worth remembering.
class CORVANE_REGEXP_EXPORT RE_Dispatch : public RE_Node {
public:
    struct Branch {
        RE_Node* node;
        RE_Branch_Start start;
    };
    using Branches = std::span<const Branch>;

    RE_Dispatch(RE_Graph_Context& context, Branches branches);

    /// The first branch that can begin at `p`, or null. Leaves a choice when there are more.
    const RE_Node* choose(const char16_t* p, RE_Search_Info& info) const {
        const std::size_t column =
            info.atEnd(p) ? RE_Branch_Start::atEnd : std::min<std::size_t>(*p, RE_Branch_Start::others);
        const std::uint32_t place = placeOf(column);
        if (place == nowhere || (memoised && !info.firstVisit(this, p))) {
            return nullptr;
        }
        return take(place, p, info);
    }
    static constexpr std::size_t noWay = static_cast<std::size_t>(-1);
    static constexpr std::size_t manyWays = static_cast<std::size_t>(-2);
    /// The index of the only branch that can begin at `p`, or that there is none, or more. Leaves nothing,
    /// and consults no memo.
    std::size_t onlyWay(const char16_t* p, const char16_t* end) const {
        return onlyWayOf(p >= end ? RE_Branch_Start::atEnd
                                  : std::min<std::size_t>(*p, RE_Branch_Start::others));
    }
    std::size_t onlyWayOf(std::size_t column) const {
        const std::uint32_t place = placeOf(column);
        if (place == nowhere) {
            return noWay;
        }
        const std::uint32_t entry = places[place];
        return (entry & lastOfList) != 0 ? entry >> 1 : manyWays;
    }
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Node* resume(const RE_Backtrack_Record& record, std::size_t& pos, RE_Search_Info& info) const override;
    bool isBranching() const override { return true; }
    RE_Meaning meaning() const override;
    void visitLinks(RE_Link_Visitor& visitor) override;
    std::string label() const override;

    std::vector<RE_Node*, RE_Allocator<RE_Node*>> ways;  ///< in the order of the pattern

private:
    static constexpr std::uint32_t nowhere = 0;

    /// Takes the way at a place of `places`, and leaves a record when the list continues after it.
    RE_Node* take(std::uint32_t place, const char16_t* p, RE_Search_Info& info) const {
        const std::uint32_t entry = places[place];
        if ((entry & lastOfList) != 0) {
            info.spareChoice();
        } else if (info.countChoice()) {
            info.pushRecord(this, p, place + 1);
        } else {
            return nullptr;
        }
        return ways[entry >> 1];
    }

    static constexpr std::uint32_t lastOfList = 1;
    /// Lists of ways, one after another; equal lists are there once. An entry is twice the index of the way,
    /// and one more when the list ends with it. The first entry belongs to no list, so that 0 may say
    /// `nowhere`.
    std::vector<std::uint32_t, RE_Allocator<std::uint32_t>> places;
    /// By columns. Nearly all dispatches have few places, and patterns may have many dispatches: so it is a byte, or else the
    /// place is in `farPlaces`.
    static constexpr std::uint8_t isFar = 255;
    std::uint32_t placeOf(std::size_t column) const {
        const std::uint8_t place = firstPlace[column];
        return place != isFar ? place : farPlaces[column];
    }
    std::array<std::uint8_t, RE_Branch_Start::columns> firstPlace;
    std::vector<std::uint32_t, RE_Allocator<std::uint32_t>> farPlaces;  ///< empty where none is far
};
