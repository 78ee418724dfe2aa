// PCRE2 (16-bit) as a peer: an independent engine whose semantics are known by their differences from ours. Where no
// rule of docs/dialect.md says otherwise, both have to find the same.
#pragma once

#include "tests/support/outcome.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace corvane_tests {

class Pcre2Pattern {
public:
    /// `flags` are our flag bits, translated; check `valid` before searching.
    Pcre2Pattern(std::u16string_view pattern, std::uint32_t flags);
    ~Pcre2Pattern();
    Pcre2Pattern(const Pcre2Pattern&) = delete;
    Pcre2Pattern& operator=(const Pcre2Pattern&) = delete;

    bool valid() const;
    /// Every group is a token; unset groups are tokens of length 0 at 0. Nothing when a match limit was hit.
    std::optional<Outcome> search(std::u16string_view subject, size_t offset) const;
    /// All matches from `offset` on, as `reference::searchAll`.
    std::optional<std::vector<Outcome>> searchAll(std::u16string_view subject, size_t offset) const;

private:
    struct Code;
    std::unique_ptr<Code> m_code;
    std::uint32_t m_matchOptions;
};

}  // namespace corvane_tests
