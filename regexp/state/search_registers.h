// The part of a search's state that machine code reads and writes, too.
//
// The code knows nothing but the offsets of these members: they are plain data of fixed size, and their order
// does not matter. Whoever changes the meaning of one has to look at `regexp/machine/` and at
// `search_info.h`.
#pragma once

#include "regexp/state/step_meter.h"

#include <cstddef>
#include <cstdint>

struct RE_Instruction;
struct RE_TokenInfo;

/// A run of units that was measured up to the unit that ends it: it ends there from each of its positions.
/// Null where none was measured.
struct RE_Measured_Run {
    const char16_t* begin = nullptr;
    const char16_t* end = nullptr;

    bool holds(const char16_t* p) const { return begin != nullptr && begin <= p && p <= end; }
};

/// A choice between the ends of a run, and what was so when this end was chosen.
struct RE_Kept_Choice {
    const char16_t* end;
    const char16_t* limit;  ///< the last end to try: the longest or the shortest
    std::int64_t meter;
    std::uint64_t steps;
    std::uint64_t countdown;
    std::size_t inEffect;
    std::size_t written;
};

struct RE_Search_Registers {
    const char16_t* subjectBegin = nullptr;
    const char16_t* subjectEnd = nullptr;
    const char16_t* matchStart = nullptr;  ///< start of the current attempt; null before the first
    mutable RE_Step_Meter meter;           ///< no part of the state that nodes see
    /// Starts tried and choices taken up; each 2048th polls for interrupts. Not the steps of the meter.
    std::uint64_t steps = 1;
    /// The memo begins once this many more choices have been taken up again or spared: most searches never pay
    /// for it. 0 while there is one.
    std::uint64_t memoCountdown = 0;
    RE_Measured_Run leadingRun;  ///< the one that the leading loop of the pattern measured last
    std::uint64_t rejectEmpty =
        0;  ///< the end of the pattern refuses a match that consumed nothing since `matchStart`

    // --- of machine code alone: they carry it from a return to the next run ---

    const void* resume = nullptr;         ///< where it continues
    const char16_t* cursor = nullptr;     ///< at what unit
    const char16_t* lastStart = nullptr;  ///< no match begins after it
    const char16_t* runBegin = nullptr;   ///< of the run that the code is in
    RE_TokenInfo* slots = nullptr;
    std::size_t* opened = nullptr;  ///< where tokens opened, in units from the subject's begin
    std::size_t inEffect = 0;       ///< tokens
    std::size_t written = 0;        ///< slots begun: `RE_Token_Stack::written`
    /// With no more room than this in the meter, a failed attempt makes the code return: the search has to look
    /// for the needed literals before it tries another start.
    std::int64_t askLeft = 0;
    const RE_Instruction* instruction = nullptr;  ///< the one that it returned for
    std::uint64_t holds = 0;                      ///< how the glance was decided that it returned for
    /// Last of the positions that the root allows from the last start on, as far as a literal further on tells; null when
    /// it has not said so in this search.
    const char16_t* allowedUpTo = nullptr;

    /// Of the choice that it hands over: the last end to try.
    const char16_t* handedLimit = nullptr;
    static constexpr std::size_t mostChoices = 4;
    RE_Kept_Choice choices[mostChoices];  ///< those that it keeps by itself, the innermost first
};
