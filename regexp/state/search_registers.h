// The part of a search's state that machine code reads and writes, too. Its layout is all that the code knows.
#pragma once

#include "regexp/state/step_meter.h"

#include <cstddef>
#include <cstdint>

struct RE_Instruction;
struct RE_TokenInfo;

/// A run of units that was measured up to the unit that ends it: it ends there from each of its positions.
struct RE_Measured_Run {
    const char16_t* begin = nullptr;
    const char16_t* end = nullptr;

    bool holds(const char16_t* p) const { return begin != nullptr && begin <= p && p <= end; }
};

struct RE_Search_Registers {
    const char16_t* subjectBegin = nullptr;
    const char16_t* subjectEnd = nullptr;
    const char16_t* matchStart = nullptr;  ///< start of the current attempt; null until the first reset
    mutable RE_Step_Meter meter;           ///< no part of the state that nodes see
    std::uint64_t steps = 1;
    /// The memo begins once this many choices have been taken up again or spared: most searches never pay for
    /// it. 0 while there is one.
    std::uint64_t memoCountdown = 0;
    RE_Measured_Run leadingRun;  ///< the one that the leading loop of the pattern measured last
    std::uint64_t rejectEmpty =
        0;  ///< the end of the pattern refuses a match that consumed nothing since `matchStart`

    // --- of machine code alone ---

    const void* resume = nullptr;         ///< where it goes on
    const char16_t* cursor = nullptr;     ///< at what unit
    const char16_t* lastStart = nullptr;  ///< no match begins behind it
    const char16_t* runBegin = nullptr;   ///< of the run that the code is in
    RE_TokenInfo* slots = nullptr;
    std::size_t* opened = nullptr;  ///< where tokens opened, in units from the subject's begin
    std::size_t inEffect = 0;       ///< tokens
    std::size_t written = 0;        ///< slots begun: `RE_Token_Stack::written`
    /// With no more steps left a failed attempt is not the code's to go on from.
    std::int64_t askLeft = 0;
    const RE_Instruction* instruction = nullptr;  ///< the one that it returned for
    std::uint64_t holds = 0;                      ///< how the glance was decided that it returned for

    // --- the one choice that it keeps by itself: an end of a run, and what was so when that was chosen ---

    const char16_t* choiceEnd = nullptr;
    const char16_t* choiceLimit = nullptr;  ///< behind which, or before which, there is none
    std::int64_t choiceMeter = 0;
    std::uint64_t choiceCountdown = 0;
    std::size_t choiceInEffect = 0;
    std::size_t choiceWritten = 0;
};
