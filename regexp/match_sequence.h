// Many searches of one subject with one pattern, on one search state and one seek table.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/base/search_report.h"
#include "regexp/state/results.h"

#include <cstddef>
#include <memory>
#include <string_view>

class RE_Tree;
struct RE_Search_Limits;

/// Each `find` answers as `RE_Tree::match` does, but allocates only what the searches before it have not
/// allocated. Tree and subject must outlive the sequence.
class CORVANE_REGEXP_EXPORT RE_Match_Sequence : public RE_Memory {
public:
    /// An empty subject may have a null pointer. Throws when there is no memory for the tokens. The limits
    /// (null: none) hold for all searches together; the state to begin with is allowed for.
    RE_Match_Sequence(const RE_Tree& pattern, std::u16string_view subject,
                      const RE_Search_Limits* searchLimits = nullptr);
    ~RE_Match_Sequence();
    RE_Match_Sequence(const RE_Match_Sequence&) = delete;
    RE_Match_Sequence& operator=(const RE_Match_Sequence&) = delete;

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
    bool wasInterrupted() const { return report().outcome == RE_Search_Outcome::interrupted; }

private:
    class Run;

    std::unique_ptr<Run> run;
};
