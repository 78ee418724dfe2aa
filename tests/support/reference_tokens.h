// The tokens of one path of the reference matcher. They travel by value, so a path that fails leaves no trace.
//
// This is the rule of the dialect that other engines lack: closing a token takes those with higher numbers out of
// effect.
#pragma once

#include "tests/support/outcome.h"

#include <optional>
#include <string_view>
#include <vector>

namespace corvane_tests::reference {

/// What a group captured last on this path.
struct Slot {
    size_t start = 0;
    size_t length = 0;
    bool closed = false;  ///< or it took no part, and is empty
};

/// Which tokens are in effect. Slots at or above the count keep what they hold, and show it again once a later
/// group has closed.
class Tokens {
public:
    /// `keeps`: closing a token leaves those with higher numbers in effect.
    Tokens(const std::vector<std::u16string>& names, bool keeps)
        : m_names(&names), m_slots(names.size()), m_keeps(keeps) {}

    /// A closed group puts itself and all lower numbers in effect.
    void close(size_t number, size_t start, size_t end) {
        m_slots[number] = {start, end - start, true};
        m_count = m_keeps && m_count > number ? m_count : number + 1;
    }

    const Slot* numbered(size_t number) const { return number < m_count ? &m_slots[number] : nullptr; }

    /// The first below the count with this name that took part. The name belongs to the pattern: where none took
    /// part it is the first of them.
    const Slot* named(std::u16string_view name) const {
        const Slot* found = nullptr;
        for (size_t number = m_count; number-- > 0;) {
            const bool isNamed = (*m_names)[number] == name;
            if (isNamed && (m_slots[number].closed || found == nullptr || !found->closed)) {
                found = &m_slots[number];
            }
        }
        return found;
    }

    std::vector<Token> inEffect() const {
        std::vector<Token> result;
        for (size_t number = 0; number < m_count; ++number) {
            const Slot& slot = m_slots[number];
            result.push_back({slot.start, slot.length, (*m_names)[number], slot.closed});
        }
        return result;
    }

private:
    const std::vector<std::u16string>* m_names;  ///< by slot, of the pattern
    std::vector<Slot> m_slots;
    size_t m_count = 0;
    bool m_keeps;
};

}  // namespace corvane_tests::reference
