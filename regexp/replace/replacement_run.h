// One replacement of the matches in a text, from left to right: which matches count, when to stop, and how
// the pieces come together.
//
// All matches share one search state, one seek table and one buffer, so the memory of a run depends on the
// longest piece and on the result, not on the number of matches.
#pragma once

#include "regexp/base/search_limits.h"
#include "regexp/match_sequence.h"
#include "regexp/replace/replaceable.h"
#include "regexp/tree.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Which matches are replaced, and how. The limits are not owned and must outlive the run.
struct RE_Replacement_Order {
    bool adjustCase;
    std::size_t which;  ///< the number of the only match to replace, counted from 1; 0 for all of them
    bool interruptible;
    const RE_Search_Limits* limits = nullptr;  ///< of all searches together; null for none
};

/// Replacement, tree and subject must outlive the run. Belongs to one thread.
class RE_Replacement_Run {
public:
    RE_Replacement_Run(const RE_Replaceable& replaceable, const RE_Tree& tree, std::u16string_view text,
                       const RE_Replacement_Order& replacementOrder);

    /// The text with its matches replaced. When the host asks to stop, what was written up to then; when a
    /// limit is met, the rest of the text is appended as it is. Called once. Throws `std::bad_alloc` and
    /// what the host throws.
    std::u16string run();
    RE_Search_Report report() const { return matches.report(); }
    /// Matches that counted, replaced or not, until the end or an interrupt.
    std::size_t matchesMet() const { return matchCount; }

private:
    /// The buffer in which the text for a match is built, kept from match to match. While a piece is built
    /// it is owned by the replacement, which frees it when it throws; `units` is null then.
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
    std::size_t copiedUpTo =
        0;  ///< what precedes this place of the subject is in the output, replaced or not
    std::size_t matchCount = 0;
    std::optional<std::size_t> previousEnd;  ///< of the last match found, counted or not
    std::size_t checkCounter = 1;            ///< matches since the flag was looked at; 0 forces a look
};
