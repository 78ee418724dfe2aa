// A repetition of one single-unit item: the run is measured at once and leaves one choice for all its ends.
//
// A greedy run takes the longest end at which the rest can begin, a lazy one the shortest. The record holds
// the end that was taken, its word the last end to be tried; backtracking takes the next end in the same
// order. Each end tried is a step.
//
// Invariant: all units from the start of the run up to an end that is taken belong to `units`, and the number
// of them is between `minimum` and `maximum`. Its state in the memo is "after the loop, at this end": how the
// end was reached makes no difference to what follows.
#pragma once

#include "regexp/graph/node.h"
#include "regexp/seek/kernels.h"
#include "regexp/state/search_registers.h"

#include <algorithm>
#include <cstddef>
#include <memory>

/// The node. The item is kept for its label and its links only; its units are a table here.
class CORVANE_REGEXP_EXPORT RE_Consume : public RE_Node {
public:
    enum class Order { greedy, lazy };

    static constexpr std::uint64_t noMaximum = unboundedLength;
    /// In units. Most runs in ordinary text are words: they end before a vector scan would pay.
    static constexpr std::ptrdiff_t shortRun = 12;

    RE_Consume(RE_Graph_Context& context, RE_Consumable* repeated, std::uint64_t least, std::uint64_t most,
               Order order);

    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Node* resume(const RE_Backtrack_Record& record, std::size_t& pos, RE_Search_Info& info) const override;
    void visitLinks(RE_Link_Visitor& visitor) override;
    /// Redirects the link to the item. Writes nothing where it stays: a finished graph may be walked while it is searched.
    void setItem(RE_Node* node) {
        if (node != item) {
            item = static_cast<RE_Consumable*>(node);
        }
    }
    void combineLengths() override;
    RE_Meaning meaning() const override;
    std::string label() const override;

    /// For a loop at the front of a pattern, where an attempt from `p` has failed: the last position from
    /// which attempts fail as well, as they were part of that one. From within an endless run every end that
    /// could be tried has been tried from its start. A run that is shorter than the minimum has no longer one
    /// in it.
    const char16_t* lastHopelessStart(const char16_t* p, RE_Search_Info& info) const;
    /// Whether the runs that lead an attempt are noted in the search, except for those that reached the
    /// maximum.
    bool isNotedUpTo() const { return possessive && !lazy && maximum != noMaximum; }
    /// The end of a run, if it ends within so few units that nothing but a plain loop pays; else null.
    const char16_t* shortRunEnd(const char16_t* p, const char16_t* limit) const {
        const RE_Unit_Set& members = *units;
        const char16_t* const stop = p + std::min<std::ptrdiff_t>(limit - p, shortRun);
        for (; p < stop; ++p) {
            if (!members.contains(*p)) {
                return p;
            }
        }
        return p == limit ? p : nullptr;
    }
    /// The end of a run that is known to be longer than `shortRun`, however long. Remembers long ones.
    const char16_t* longRunEnd(const char16_t* p, RE_Search_Info& info) const;
    /// The end of such a run, up to a limit. Trap: the first `shortRun` units are not looked at again.
    const char16_t* scanOn(const char16_t* p, const char16_t* limit, RE_Search_Info& info) const;
    /// The end of the run of units from `p` on that the item matches, however long.
    const char16_t* wholeRunEnd(const char16_t* p, RE_Search_Info& info) const;

    /// Whether ends are passed over at which the rest cannot begin. Never where the next node has a second
    /// way on, since the rest may begin with that.
    bool restSeeks() const {
        return nextNode->kind == RE_Node_Kind::matchToken ? nextNode->failNode() == nullptr
                                                          : nextNode->canSeek(false);
    }
    /// Leaves a choice on behalf of machine code: the run has been taken up to the end `taken`, and may be
    /// extended, or cut back, up to `limit`.
    void leaveChoice(const char16_t* taken, const char16_t* limit, RE_Search_Info& info) const;

    RE_Consumable* item;                       ///< the repeated unit test
    std::shared_ptr<const RE_Unit_Set> units;  ///< those that the item matches
    bool leads = false;       ///< each match begins with it: its runs are noted as the search's leading runs
    bool possessive = false;  ///< takes one end and leaves no choice
    bool couldNotHelp = false;  ///< it is so because no other end could be followed by the rest
    std::uint64_t minimum;      ///< units
    std::uint64_t maximum;      ///< units, or `noMaximum`
    bool lazy;                  ///< tries the shortest run first
    bool isOpen = false;        ///< made by the parser, and without a number of its own so far

private:
    /// Up to so many units of a lazy run are measured before what follows it is sought further away: such a
    /// scan takes no step.
    static constexpr std::ptrdiff_t nearby = RE_Step_Meter::unitsAStep - 1;
    /// Runs of so many units or more are remembered. Shorter ones are measured again as fast.
    static constexpr std::ptrdiff_t longRun = 64;

    /// Moves to an end and leaves a choice for the others; false when no end is left.
    bool takeLongest(const char16_t* from, const char16_t* end, std::size_t& pos, RE_Search_Info& info) const;
    /// Whether ends at which the rest cannot begin are passed over in this state of the search.
    bool nextSeeks(const RE_Search_Info& info) const;
    /// The first place at or after `p` at which the rest can begin, and the last one in [from, last]; null
    /// where there is none. Only where `nextSeeks`.
    const char16_t* nextStart(const char16_t* p, RE_Search_Info& info) const;
    const char16_t* lastStart(const char16_t* from, const char16_t* last, RE_Search_Info& info) const;
    /// The last end in [from, end] that is worth trying, or null.
    const char16_t* lastEnd(const char16_t* from, const char16_t* end, RE_Search_Info& info) const;
    /// The end of a long run, with the help of the run that is remembered.
    const char16_t* endOfRunFrom(const char16_t* p, RE_Search_Info& info) const;
    /// The end of a run of `most` units at the most.
    const char16_t* runEnd(const char16_t* p, std::uint64_t most, RE_Search_Info& info) const;

    // Lazy runs: lazy_consume.cpp
    const char16_t* nearStart(const char16_t* from, const char16_t* last, RE_Search_Info& info) const;
    const char16_t* nextEnd(const char16_t* reached, const char16_t* end, const char16_t* last,
                            RE_Search_Info& info) const;
    /// Whether all units in [from, to) belong to the run.
    bool reaches(const char16_t* from, const char16_t* to, RE_Search_Info& info) const;
    /// Moves to the shortest end of a run that begins at `p`, or to the next one after `end`, which has failed.
    /// Both leave a choice for the longer ones; false when no end is left.
    bool takeShortest(const char16_t* p, std::size_t& pos, RE_Search_Info& info) const;
    bool takeLonger(const char16_t* end, std::size_t limit, std::size_t& pos, RE_Search_Info& info) const;

    RE_Class_Scan stops;     // the units that end a run
    bool takesAll;           // no unit does
    std::uint32_t reachRow;  // for a search to remember how far a lazy run was seen to go
};
