// Capture tokens of one search: where each group matched last.
#pragma once

#include "regexp/memory.h"

#include <boost/container/small_vector.hpp>
#include <concepts>
#include <cstddef>

/// One capture token. Indexes and lengths count code units from the subject's first unit.
struct RE_TokenInfo {
    std::size_t start = 0;
    std::size_t length = 0;
    const char16_t* name = nullptr;  ///< zero-terminated, owned by the compiled pattern; null when unnamed
};

/// The token store: one slot a group, of which the first `count` are in effect. Later slots hold stale data.
/// Closing a token makes it the last one in effect, so tokens with higher numbers are forgotten.
class CORVANE_REGEXP_EXPORT RE_Token_Stack : public RE_Memory {
public:
    explicit RE_Token_Stack(std::size_t n = 0) : slots(n) {}

    void reset() { count = 0; }
    void set_start(std::size_t index, const char16_t* name, std::size_t start);
    void set_end(std::size_t index, std::size_t end);

    /// The slot, or null when the token is not in effect.
    const RE_TokenInfo* get(std::size_t index) const { return index < count ? &slots[index] : nullptr; }
    /// The same for every other integral type, the literal 0 included. No token has a negative number.
    template <std::integral Index>
    const RE_TokenInfo* get(Index index) const {
        return get(static_cast<std::size_t>(index));
    }
    /// The lowest-numbered token in effect that has this name (compared exactly), or null.
    const RE_TokenInfo* get(const char16_t* name) const;

    boost::container::small_vector<RE_TokenInfo, 8, RE_Allocator<RE_TokenInfo>> slots;
    std::size_t count = 0;
};
