// What a search remembers of the subject for nodes with memo rows: runs that were measured, and stretches at which
// nothing can begin. It holds until the subject changes.
#pragma once

#include "regexp/state/search_records.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class RE_Node;

class CORVANE_REGEXP_EXPORT RE_Known_Runs : public RE_Search_Records {
public:
    /// The run that was measured last on behalf of the owner of a memo row, or null.
    const RE_Measured_Run* measuredRun(std::uint32_t memoRow) const {
        return memoRow < runs.size() ? &runs[memoRow] : nullptr;
    }
    void noteRun(std::uint32_t memoRow, RE_Measured_Run run);
    /// The last position in [first, last] at which `next` can match, or null. `next` must be able to seek.
    /// What was found barren on behalf of `owner`, a node with a memo row of its own, is not looked through
    /// again; `owner` must always ask about the same `next`.
    const char16_t* lastStartOf(const RE_Node* next, const RE_Node* owner, const char16_t* first,
                                const char16_t* last);
    /// The same without a memory.
    const char16_t* lastStartWithin(const RE_Node* next, const char16_t* first, const char16_t* last);

protected:
    using RE_Search_Records::RE_Search_Records;
    ~RE_Known_Runs() = default;

    /// Rows from this one on get other owners.
    void forgetRowsFrom(std::uint32_t row);

    /// Bytes of memory held.
    std::size_t bytesOfRuns() const {
        return (runs.capacity() + barren.capacity()) * sizeof(RE_Measured_Run);
    }

    std::vector<RE_Measured_Run, RE_Allocator<RE_Measured_Run>> runs;
    std::vector<RE_Measured_Run, RE_Allocator<RE_Measured_Run>> barren;  ///< both ends included
    bool knowsSubject = false;  ///< runs or barren stretches of it, or states in a memo
};
