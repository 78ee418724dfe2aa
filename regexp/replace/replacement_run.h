// One replacement of the matches in a text, from left to right.
#pragma once

#include "regexp/match_sequence.h"
#include "regexp/replace/replaceable.h"
#include "regexp/tree.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Which matches are replaced, and how.
struct RE_Replacement_Order {
    bool adjustCase;
    std::size_t which;  ///< the number of the only match to replace, counted from 1; 0 for all of them
    bool interruptible;
    const RE_Search_Limits* limits = nullptr;  ///< of all searches together; null for none
};

class RE_Replacement_Run {
public:
    RE_Replacement_Run(const RE_Replaceable& replaceable, const RE_Tree& tree, std::u16string_view text,
                       const RE_Replacement_Order& replacementOrder);

    /// The text after the replacement. When the host asks to stop, what was written up to then. Called once.
    std::u16string run();
    RE_Search_Report report() const { return matches.report(); }
    std::size_t matchesMet() const { return matchCount; }

private:
    /// The buffer in which the text for a match is built, kept from match to match.
    struct Piece {
        Piece();
        ~Piece() { utFree(units); }
        Piece(const Piece&) = delete;
        Piece& operator=(const Piece&) = delete;
        void build(const RE_Replaceable& replacement, RE_Results& match);

        std::size_t capacity = 128;
        std::size_t length = 0;
        char16_t* units;
    };

    void take(RE_Results& match);
    void replaceMatch(RE_Results& match);
    bool stopRequested() const;

    const RE_Replaceable& replacement;
    std::u16string_view subject;
    RE_Replacement_Order order;
    Piece piece;
    RE_Match_Sequence matches;
    std::u16string output;
    std::size_t copiedUpTo = 0;
    std::size_t matchCount = 0;
    std::optional<std::size_t> previousEnd;
    std::size_t checkCounter = 1;
};
