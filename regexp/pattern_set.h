// Many patterns over one text: which of them matches first, and how. For lexers, highlighters and routers.
//
//     RE_Pattern_Set set;
//     for (const RE_Tree& tree : trees) {
//         set.add(tree);
//     }
//     set.use(text);
//     for (auto found = set.find(0); found; found = set.find(found->match->nextIndex())) {
//         use(found->pattern, reMatchText(*found->match));
//     }
#pragma once

#include "regexp/base/memory.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

class RE_Results;
class RE_Tree;

/// Finds what searches with each of the patterns would find together, but remembers where each matches next: a pattern
/// is searched with again once that place was passed. The patterns may be used elsewhere at the same time and must
/// outlive the set, as must the text. Belongs to one thread.
class CORVANE_REGEXP_EXPORT RE_Pattern_Set : public RE_Memory {
public:
    struct Found {
        std::size_t pattern;  ///< in the order in which they were added, from 0
        /// A view of the set, good until its next call.
        const RE_Results* match;
    };
    static constexpr std::size_t anyStart = static_cast<std::size_t>(-1);

    RE_Pattern_Set();
    explicit RE_Pattern_Set(std::span<const RE_Tree* const> patterns);
    ~RE_Pattern_Set();
    RE_Pattern_Set(const RE_Pattern_Set&) = delete;
    RE_Pattern_Set& operator=(const RE_Pattern_Set&) = delete;

    /// Returns the number of the pattern. Matches that were found before stay found.
    std::size_t add(const RE_Tree& pattern);
    std::size_t size() const;

    /// Goes on with this text. A text of no length may have a null pointer.
    void use(std::u16string_view text);
    /// The leftmost match of all patterns that starts at or after `offset`, and not after `latestStart`; of those that
    /// start together, that of the pattern that was added first. It may end anywhere, and tests see the whole text.
    /// Offsets may grow in any steps; a smaller one makes the set forget what it has found. Nothing when there is none,
    /// and when the host asked to stop. Throws like `RE_Tree::match`.
    ///
    /// Patterns that call the host are searched with each time, as its answers may change.
    std::optional<Found> find(std::size_t offset, std::size_t latestStart = anyStart);
    /// Whether the host broke the last `find` off.
    bool wasInterrupted() const;

private:
    class Work;

    std::unique_ptr<Work> work;
};
