// The matches of one subject from left to right.
#pragma once

#include "regexp/regexp.h"

#include <memory>
#include <optional>
#include <string_view>

namespace tool {

class MatchWalker {
public:
    // Both must outlive the walker and the results it returns.
    MatchWalker(const RE_Tree& tree, std::u16string_view subject) : tree_(tree), subject_(subject) {}

    // Null after the last match and when the search was interrupted; the interrupt flag tells which.
    std::unique_ptr<RE_Results> next();

private:
    const RE_Tree& tree_;
    std::u16string_view subject_;
    RE_Seek_Table
        seekTable_;  // shared by all searches, so that what one learns about the subject serves the next
    std::size_t from_ = 0;
    std::optional<std::size_t> previousEnd_;
};

}  // namespace tool
