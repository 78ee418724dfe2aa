// Many searches of one subject with one pattern, on one search state and one seek table.
#pragma once

#include "regexp/results.h"
#include "regexp/search_info.h"
#include "regexp/seek/seek_table.h"

#include <cstddef>
#include <optional>
#include <string_view>

class RE_Tree;

/// Each `find` answers as `RE_Tree::match` does, but allocates only what the searches before it have not
/// allocated. Tree and subject must outlive the sequence.
class RE_Match_Sequence : public RE_Memory {
public:
    /// An empty subject may have a null pointer. Throws when there is no memory for the tokens.
    RE_Match_Sequence(const RE_Tree& pattern, std::u16string_view subject);

    /// The leftmost match at or behind `offset`, which lies between the end of the match found before and the
    /// subject's length; null when there is none or the host asked to stop: then the sequence is over. A view
    /// of the search state, good until the next call.
    RE_Results* find(std::size_t offset);
    /// Whether the host broke the last search off.
    bool wasInterrupted() const { return info.wasInterrupted(); }

private:
    const RE_Tree& tree;
    RE_Seek_Table table;
    RE_Search_Info info;
    std::optional<RE_Results> view;
};
