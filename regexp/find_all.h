// Conveniences over a compiled pattern: all matches of a text, the text between them, a match at one place,
// and the texts of tokens.
//
//     for (auto& match : tree.find_all(text)) {
//         use(reMatchText(match), reTokenText(match, 0));
//     }
//
// Texts are views. They read the searched text, which must outlive them; the pattern must outlive the range.
#pragma once

#include "regexp/match_sequence.h"
#include "regexp/state/results.h"
#include "regexp/tree.h"

#include <cstddef>
#include <iterator>
#include <optional>
#include <string_view>

/// `RE_Tree::find_all`: the matches of a text from left to right, none overlapping another.
///
/// Behind an empty match the search goes on one unit further; an empty match that directly follows a match is
/// left out. To be walked through once, by one thread. All searches share one state: the match that the
/// iterator refers to changes with the next step, and so do its tokens. Texts taken from it stay good. An
/// interrupt ends the range, and so does a limit.
class CORVANE_REGEXP_EXPORT RE_Match_Range {
public:
    class Iterator {
    public:
        using value_type = RE_Results;
        using difference_type = std::ptrdiff_t;

        const RE_Results& operator*() const { return *range->current; }
        const RE_Results* operator->() const { return range->current; }
        Iterator& operator++() {
            range->advance();
            return *this;
        }
        void operator++(int) { range->advance(); }
        bool operator==(std::default_sentinel_t) const { return range->current == nullptr; }

    private:
        friend class RE_Match_Range;
        explicit Iterator(RE_Match_Range& matches) : range(&matches) {}

        RE_Match_Range* range;
    };

    RE_Match_Range(const RE_Match_Range&) = delete;
    RE_Match_Range& operator=(const RE_Match_Range&) = delete;

    /// Searches for the first match; further calls find the range where it was left.
    Iterator begin();
    std::default_sentinel_t end() const { return {}; }

    /// Whether the host broke the search off, so that there may be more matches.
    bool interrupted() const { return sequence.wasInterrupted(); }
    /// How the searches up to now ended, and what they took together.
    RE_Search_Report report() const { return sequence.report(); }

private:
    friend class RE_Tree;  // whose overloads of find_all refuse a text that dies with the call

    RE_Match_Range(const RE_Tree& pattern, std::u16string_view text, std::size_t offset,
                   const RE_Search_Limits* limits = nullptr);
    void advance();

    RE_Match_Sequence sequence;
    std::size_t size;
    std::size_t next;  ///< where the next search starts; behind the end of the text when there is none
    std::optional<std::size_t> previousEnd;
    const RE_Results* current = nullptr;
    bool begun = false;
};

// RE_Tree::match_at: the match that starts at exactly this position, or null. Text before it is seen by
// look-behinds and anchors.
//
// RE_Tree::split: the texts between the matches of `find_all`, without those that are empty matches at the
// start or the end of the text. There is always at least one text, and together with the matches they are the
// whole.

/// The text of the match. Without data (null) where the match has no subject, as those of narrow text have
/// none.
CORVANE_REGEXP_EXPORT std::u16string_view reMatchText(const RE_Results& match);

/// The text of the token. Without data (null) when it is not in effect or its group took no part; a token that matched
/// the empty text has data.
CORVANE_REGEXP_EXPORT std::u16string_view reTokenText(const RE_Results& match, std::size_t index);
/// The same by name, of the first token that has it and took part.
CORVANE_REGEXP_EXPORT std::u16string_view reTokenText(const RE_Results& match, std::u16string_view name);
