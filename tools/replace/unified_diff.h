// Changes of a file in the form that `patch` reads.
#pragma once

#include "tools/replace/replacer.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// Lines that differ: of the old text those from `oldBegin` up to `oldEnd`, counted from 0, and those in their place.
struct LineChange {
    std::size_t oldBegin;
    std::size_t oldEnd;
    std::size_t newBegin;
    std::size_t newEnd;
};

// The whole lines that the edits touch, ascending and with unchanged lines between any two.
std::vector<LineChange> lineChanges(std::u16string_view before, std::u16string_view after,
                                    const std::vector<Edit>& edits);

// Two versions of a file as lines of bytes, and how they differ. With three lines of context around each change. Lines
// that turn out to be the same are left out; empty when all are. Name and lines stand as they are, whatever bytes they
// have, but for a name with control characters or quotes, which is quoted as a string of C.
std::string unifiedDiff(const std::string& name, std::string_view before, std::string_view after,
                        const std::vector<LineChange>& changes);

}  // namespace tool
