// The backtrack records that a search has left, the most recent on top.
//
// Invariant: records below `base` belong to what is around the innermost open body, and are out of its reach.
// Everything above is popped or dropped before the body ends.
#pragma once

#include "regexp/base/inline_list.h"
#include "regexp/base/memory.h"

#include <cstddef>
#include <cstdint>

class RE_Node;

/// A record of a choice: which node made it, and what is restored when it is popped.
struct RE_Backtrack_Record {
    const RE_Node* node = nullptr;
    const char16_t* position = nullptr;  ///< subject position at which the choice was made
    std::size_t savedTokens = 0;         ///< count of recorded tokens at that moment
};

/// What is kept beside a record: how far to undo token writes, and a word of the node's own. Apart from the
/// record, as a record is handed out when it is popped, and its mark is not.
struct RE_Backtrack_Mark {
    std::size_t trailHeight = 0;
    std::size_t word = 0;
};

/// Stack of records. `top` is the index of the most recent one, -1 when empty; pops never go below `base`.
/// Records and marks grow together, by doubling; the first 8 need no allocation.
struct CORVANE_REGEXP_EXPORT RE_Backtrack_Stack {
    RE_Backtrack_Stack() : records(1), marks(1) {}

    void grow();

    RE_Inline_List<RE_Backtrack_Record, 8> records;
    RE_Inline_List<RE_Backtrack_Mark, 8> marks;
    std::int32_t top = -1;
    std::int32_t base = 0;
};
