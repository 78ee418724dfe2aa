// Many searches of one subject with one pattern, on one search state and one seek table.
#pragma once

#include "regexp/base/memory_account.h"
#include "regexp/base/search_limits.h"
#include "regexp/seek/seek_table.h"
#include "regexp/state/results.h"
#include "regexp/state/search_info.h"

#include <cstddef>
#include <optional>
#include <string_view>

class RE_Machine_Code;
class RE_Tree;

/// Each `find` answers as `RE_Tree::match` does, but allocates only what the searches before it have not
/// allocated. Tree and subject must outlive the sequence.
class CORVANE_REGEXP_EXPORT RE_Match_Sequence : public RE_Memory {
public:
    /// An empty subject may have a null pointer. Throws when there is no memory for the tokens. The limits
    /// (null: none) hold for all searches together; the state to begin with is allowed for.
    RE_Match_Sequence(const RE_Tree& pattern, std::u16string_view subject,
                      const RE_Search_Limits* searchLimits = nullptr);

    /// Goes on with another subject, as a sequence made anew would, without giving storage back. Results that
    /// were seen are gone. For many short subjects. Throws when there is no memory for the tokens of a match
    /// that were released.
    void use(std::u16string_view subject);
    /// The leftmost match that starts at or after `offset` and not after `latestStart`; it may end anywhere, and tests
    /// see the whole subject. `offset` lies between that of the search before and the subject's length: also within
    /// the match found last, though going on after it keeps more of what is known. A view of the search state, good
    /// until the next call. Null when there is none, and when the search was broken off: then the sequence is over.
    RE_Results* find(std::size_t offset, std::size_t latestStart = anyStart);
    static constexpr std::size_t anyStart = static_cast<std::size_t>(-1);
    /// The match of the last `find`, as an object of its own; until `use` the sequence is over. Null when
    /// that found none, or there is no memory.
    RE_Results* releaseMatch();
    /// How the searches ended: `matched` when there was a match and nothing broke them off.
    RE_Search_Report report() const;
    /// Whether the host broke the last search off.
    bool wasInterrupted() const { return outcome() == RE_Search_Outcome::interrupted; }

private:
    RE_Search_Info freshState(std::u16string_view subject);
    RE_Search_Outcome outcome() const;
    void turnTo(std::u16string_view subject);
    void turnWithin(std::u16string_view subject);
    RE_Results* searchWithin(std::size_t offset, std::size_t latestStart);
    RE_Results* search(std::size_t offset, std::size_t latestStart);
    RE_Results* searchByCode(std::size_t offset, std::size_t latestStart);
    /// Makes ready for a search from `offset` on, after those that were before.
    void goOn(std::size_t offset);
    bool isEndedFromOutside();
    RE_Results* see(std::size_t length);
    void getReady();
    RE_Results* makeView(std::size_t length);

    const RE_Tree& tree;
    RE_Memory_Account account;
    RE_Seek_Table table;
    RE_Search_Info info;
    RE_Search_Limits limits;
    bool isLimited;
    bool clockWasRead = false;  ///< since the subject is this one
    bool memoryFull = false;
    bool prepared = false;                  ///< for the pattern
    bool found = false;                     ///< the last search found a match, which was not released
    bool seen = false;                      ///< a match in the subject; the last one is in the view
    bool mayRunCode = false;                ///< machine code is all that a search needs
    const RE_Machine_Code* code = nullptr;  ///< the pattern's, once it has some
    std::optional<RE_Results> view;
};
