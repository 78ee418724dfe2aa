// What a successful search hands to its caller.
#pragma once

#include "regexp/state/token_stack.h"

#include <cstddef>

class RE_Search_Info;

/// Extent and tokens of one match. Made by `RE_Tree::match`, owned by the caller, freed with `delete`.
/// The subject must outlive it where its text is read through the pointers, and the compiled pattern where
/// token names are read. Not synchronised; one result belongs to one thread at a time.
class CORVANE_REGEXP_EXPORT RE_Results : public RE_Memory {
public:
    /// `end` and `extra` (code units) give the end of the match; with `take` the token store moves here,
    /// without it the results are a view that must not outlive the search state.
    RE_Results(RE_Search_Info* info, const char16_t* end, std::size_t extra, bool take);
    RE_Results(const RE_Results&) = delete;
    RE_Results& operator=(const RE_Results&) = delete;

    /// Where a search for the next match starts: after this match, or one unit on when it is empty.
    std::size_t nextIndex() const { return matchStart + (matchLength != 0 ? matchLength : 1); }

    /// Whether the group of the token (from 0) closed on the way of the match and its token is in effect, if only with
    /// the empty text.
    bool tookPart(std::size_t index) const { return tokens != nullptr && tokens->tookPart(index); }

    bool ownsTokens;
    const char16_t* subjectBegin;
    const char16_t* subjectEnd;
    std::size_t matchStart;
    std::size_t matchLength;
    RE_Token_Stack* tokens;  ///< null when there was no memory for it

private:
    RE_Token_Stack taken;  // the store itself, so that results with few tokens are one block
};
