// Capture tokens of one search: where each group matched last.
//
// Closing a token puts it and all lower ones in effect and takes the higher ones out of effect; their slots
// stay as they are, since a later close of a higher token brings them back. So every slot below `count` tells
// what its group captured last on the way that the search took, and an empty text where the group never
// closed on that way.
//
// Slots at or above `written` hold stale data of other attempts: emptying them all for each attempt would
// cost more than most attempts do. Whoever reads slots directly has to look at `written` first.
#pragma once

#include "regexp/base/inline_list.h"
#include "regexp/base/memory.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// One capture token. Indexes and lengths count code units from the subject's first unit.
struct RE_TokenInfo {
    std::size_t start = 0;
    std::size_t length = 0;
    const char16_t* name = nullptr;  ///< zero-terminated, owned by the compiled pattern; null when unnamed
    bool tookPart = false;           ///< the group closed; else start and length are 0
};

/// The token store: one slot for each group, of which the first `count` are in effect. Belongs to one search.
class CORVANE_REGEXP_EXPORT RE_Token_Stack : public RE_Memory {
public:
    explicit RE_Token_Stack(std::size_t n = 0) : slots(n) {}

    /// Takes all tokens out of effect. The slots keep what they hold.
    void reset() { count = written = 0; }
    /// Plain writes to one slot, ignored where there is no such slot. Nothing is put on the trail.
    void set_start(std::size_t index, const char16_t* name, std::size_t start);
    void set_end(std::size_t index, std::size_t end);

    /// The slot, or null when the token is not in effect.
    const RE_TokenInfo* get(std::size_t index) const { return index < count ? &slots[index] : nullptr; }
    /// The same for every other integral type, the literal 0 included. No token has a negative number.
    template <std::integral Index>
    const RE_TokenInfo* get(Index index) const {
        const bool fits = index >= Index{} && static_cast<std::uint64_t>(index) < count;
        return fits ? &slots[static_cast<std::size_t>(index)] : nullptr;
    }
    /// The lowest-numbered token in effect that has this name (compared exactly) and whose group took part; where
    /// none of that name took part, the lowest-numbered one in effect. Null where there is none.
    const RE_TokenInfo* get(const char16_t* name) const;
    /// The number of that token, or one that is beyond all slots.
    std::size_t find(std::u16string_view name) const;

    /// Whether the token is in effect and its group captured something, if only the empty text. False for a token in
    /// effect whose group never closed, as that of `a` in `(a)x|(b)` where `b` matched.
    bool tookPart(std::size_t index) const { return index < count && slots[index].tookPart; }

    /// Makes slot `index` and those below it ready to be read. They hold stale data where this attempt has
    /// written none.
    void begin(std::size_t index) {
        for (; written <= index; ++written) {
            slots[written].start = slots[written].length = 0;
            slots[written].tookPart = false;
        }
    }

    RE_Inline_List<RE_TokenInfo, 8> slots;
    std::size_t count = 0;
    /// Slots that the attempt has written or begun; what the others hold is stale. Not lowered by backtracking: a write
    /// that is undone leaves a slot as it was begun.
    std::size_t written = 0;
};
