// What can write the text that replaces a match: the interface between a compiled replacement and whoever
// collects its text.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/state/results.h"

#include <cstddef>

/// A writer of text for one match. Implementations keep nothing of a match, so one object may serve any
/// number of matches, and of threads unless it says otherwise.
class CORVANE_REGEXP_EXPORT RE_Replaceable : public RE_Memory {
public:
    /// Writes the text for one match after the `*length` units that the buffer holds, and returns the
    /// buffer, which may have moved. Updates `*length` and `*capacity`. All three count code units; nothing
    /// is terminated.
    ///
    /// The buffer is a block of the host's allocator (null with a capacity of 0 is one, too) and is taken
    /// over: the caller owns what is returned, and when an exception leaves this function, the buffer has
    /// been freed. So a caller forgets its pointer before the call. Throws `std::bad_alloc` and whatever an
    /// expression's host throws.
    ///
    /// `results` is the match, whose subject and pattern are still alive. It is not changed.
    virtual char16_t* build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                    RE_Results* results) const = 0;
    virtual ~RE_Replaceable() = default;
};
