// What a loop does about required passes that consume nothing.
//
// They count, so `(?:|a){300}` may well make 300 of them at one place. Three rules keep that from growing
// out of hand, above all where loops nest:
//
// 1. From a place with n units before the subject's end at most n passes consume anything. Once so many are
//    left that one of them has to be an empty pass that changes nothing, one more leads to the same ends in
//    the same order, and those beyond that number are left out.
// 2. Where matching the empty text takes few passes in all, or what is left of the subject is so short that
//    few positions and counts can come up, all others are made.
// 3. Elsewhere an empty required pass is the last one, and the optional ones follow. That alone is not
//    exact: ends are lost that are only reached by consuming in a later pass, and where passes of several
//    lengths follow the empty one, ends come in another order.
//
// The plan depends on the pattern alone; what depends on the place is decided by the nodes during the
// search, from the numbers given here. The compile options must not influence any of them: all settings
// have to give the same answers.
#pragma once

#include "regexp/parser/measure.h"

#include <cstdint>

/// The rules as they apply to one loop. All counts saturate. A loop that is not guarded has a plan that
/// does nothing.
struct RE_Empty_Passes {
    std::uint32_t taken;       ///< by matching the empty text, at the most, with those of the loops within
    std::uint32_t all;         ///< the same if rule 3 left none out
    bool endLoop;              ///< rule 3 holds
    bool optionalFollow;       ///< after such a last pass; else the loop is left
    std::uint64_t exactUnits;  ///< rule 3 does not hold with fewer units than these before the subject's end
    std::uint64_t perUnit;     ///< passes that are worth making, for each unit before the subject's end,
    std::uint64_t atEnd;       ///< and at the end; 0 where rule 1 does not hold
};

/// The plan for the repetition at `index`, whose body is measured and whose own plan is `plan`.
/// `callsHost`: whether anything in the pattern calls the host, as the number of calls is then part of the
/// answer. Takes constant time, but for a bisection of twenty steps where rule 3 holds.
RE_Empty_Passes planEmptyPasses(const RE_Syntax_Tree& tree, std::uint32_t index, const RE_Repeat_Plan& plan,
                                bool callsHost);
