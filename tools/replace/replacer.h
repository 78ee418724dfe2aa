// The replacement of the matches in one text, and which parts of it that changes.
#pragma once

#include "regexp/regexp.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// A part of the old text and what took its place, in units of the old and the new text.
struct Edit {
    std::size_t oldBegin;
    std::size_t oldEnd;
    std::size_t newBegin;
    std::size_t newEnd;
};

struct ReplacedText {
    std::u16string text;
    std::size_t matches = 0;
    std::vector<Edit> edits;  // ascending; where they were asked for
};

class Replacer {
public:
    // Both must outlive it. `which` is the number of the only match to replace, from 1; 0 for all of them.
    Replacer(const RE_Tree& tree, const RE_Replace& replace, bool adjustCase, std::size_t which)
        : tree_(tree), replace_(replace), adjustCase_(adjustCase), which_(which) {}

    // Throws Interrupted: a text that is replaced in part must go nowhere.
    ReplacedText run(std::u16string_view subject, bool wantsEdits) const;
    // Whether these matches suffice for anything to be replaced.
    bool hasReplaced(std::size_t matches) const { return matches >= (which_ == 0 ? 1 : which_); }

private:
    ReplacedText runWithEdits(std::u16string_view subject) const;

    const RE_Tree& tree_;
    const RE_Replace& replace_;
    bool adjustCase_;
    std::size_t which_;
};

}  // namespace tool
