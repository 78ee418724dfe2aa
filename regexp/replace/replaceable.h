// What can write the text that replaces a match.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/state/results.h"

#include <cstddef>

class CORVANE_REGEXP_EXPORT RE_Replaceable : public RE_Memory {
public:
    /// Writes the text for one match behind the `*length` units that the buffer (of the host's allocator)
    /// holds, and returns the buffer, which may have moved. Lengths and capacities count code units.
    ///
    /// The buffer is taken over: when an exception leaves this function, the buffer has been freed.
    virtual char16_t* build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                    RE_Results* results) const = 0;
    virtual ~RE_Replaceable() = default;
};
