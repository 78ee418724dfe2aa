// Searching a text of any encoding, no further than it has to be known.
//
//     RE_Text text;
//     text.useUtf8(file);
//     for (const RE_Text_Match& match : reFindAll(tree, text)) {
//         print(match.extent(), match.bytes(), match.token(0));
//     }
//
// A text is converted while it is searched: where the reach of the pattern (`RE_Reach`) is bounded, or ends at units that
// the pattern does not consume, the first match of a gigabyte costs what the part before it costs. A pattern that may have
// to see everything, such as `a.*` where the dot matches line feeds, is given everything.
//
// Text, pattern and limits must outlive the searches. Interrupts, limits and the request to stop hold for conversions too;
// the memory ceiling is for the text and the search together. All throw `std::bad_alloc` and what a host throws.
#pragma once

#include "regexp/match_sequence.h"
#include "regexp/replace/replaceable.h"
#include "regexp/text/text.h"
#include "regexp/tree.h"

#include <cstddef>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class RE_Reach;

/// Searches of one text with one pattern, from offset to offset: `RE_Match_Sequence` for texts that are converted on the
/// way. For one thread.
class CORVANE_REGEXP_EXPORT RE_Text_Search : public RE_Memory {
public:
    /// The limits are copied, and hold for all searches together.
    RE_Text_Search(const RE_Tree& pattern, RE_Text& subject, const RE_Search_Limits& searchLimits = {});
    ~RE_Text_Search();
    RE_Text_Search(const RE_Text_Search&) = delete;
    RE_Text_Search& operator=(const RE_Text_Search&) = delete;

    /// The leftmost match that starts at or after this unit, and not after `latestStart`. Units that ascend from search to search are cheaper. A view,
    /// good until the next call; its subject is what the search knew. Null when there is none, and when something broke the
    /// search off: then there are no more.
    const RE_Results* find(std::size_t unit, std::size_t latestStart = RE_Match_Sequence::anyStart);
    /// The unit at this offset, as `RE_Text::unitOf` has it. Nothing when the limits or an interrupt stopped the conversion:
    /// then the searches are over. Views of matches are gone.
    std::optional<std::size_t> unitAt(std::size_t offset, RE_Offsets counted);
    /// The text is another one now, and what was found in the one before is gone. Keeps what later searches can use.
    void beginAnew(const RE_Search_Limits& searchLimits);
    /// Whether the last search reached the end of the text without a match.
    bool isComplete() const { return now.stopped == RE_Search_Outcome::noMatch; }
    RE_Search_Report report() const;

private:
    void turnBack();
    const RE_Results* findKnown(std::size_t unit, std::size_t latestStart);
    bool knowMore(std::size_t unit);
    void stop(RE_Search_Outcome outcome) { now.stopped = outcome; }
    void renew();
    void finish();

    const RE_Tree& tree;
    RE_Text& text;
    /// Of one text.
    struct Progress {
        std::size_t latestUnit = 0;     ///< that a search began at
        std::size_t sequenceKnows = 0;  ///< units
        bool hasSequence = false;       ///< which is of this text, as far as it knows it
        bool sequenceIsWhole = false;
        std::size_t finalStarts = 0;  ///< attempts from before here are as they would be with the whole text
        std::size_t barriersSought = 0;
        bool found = false;
        RE_Search_Outcome stopped = RE_Search_Outcome::noMatch;
        RE_Search_Report spent;         ///< by sequences that are over
        std::uint64_t stepsBefore = 0;  ///< of the sequence, in other texts or with less of this one
    };

    RE_Search_Limits limits;
    std::unique_ptr<RE_Reach> reach;  ///< of the pattern, once some text was not whole
    /// Kept where it has no limits: one that has them is made anew, with what is left of them.
    std::optional<RE_Match_Sequence> sequence;
    Progress now;
};

class RE_Text_Matches;

/// The match that a walk is at.
class CORVANE_REGEXP_EXPORT RE_Text_Match {
public:
    /// Both must outlive it.
    RE_Text_Match(RE_Text& subject, RE_Offsets what, const RE_Results* found = nullptr)
        : text(&subject), offsets(what), match(found) {}

    /// In what the walk counts.
    RE_Extent extent() const { return extentOf(match->matchStart, match->matchLength); }
    /// Nothing when the token is not in effect or its group took no part. Tokens count from 0.
    std::optional<RE_Extent> token(std::size_t index) const;
    /// Of the first token of this name that took part.
    std::optional<RE_Extent> token(std::u16string_view name) const;
    bool tookPart(std::size_t index) const { return match->tookPart(index); }
    /// The bytes of the source. A view of them, as long as those live.
    std::span<const std::byte> bytes() const { return text->bytesOf(match->matchStart, match->matchLength); }
    std::span<const std::byte> tokenBytes(std::size_t index) const;
    RE_Encoding encoding() const { return text->encoding(); }
    /// The match in units.
    const RE_Results& units() const { return *match; }

private:
    friend class RE_Text_Matches;
    RE_Extent extentOf(std::size_t unit, std::size_t length) const {
        return text->extentOf(unit, length, offsets);
    }

    RE_Text* text;
    RE_Offsets offsets;
    const RE_Results* match = nullptr;
};

/// The matches of a text from left to right: those of `RE_Tree::find_all`. To be walked through once, by one thread.
class CORVANE_REGEXP_EXPORT RE_Text_Matches : public RE_Memory {
public:
    class Iterator {
    public:
        using value_type = RE_Text_Match;
        using difference_type = std::ptrdiff_t;

        const RE_Text_Match& operator*() const { return range->current; }
        const RE_Text_Match* operator->() const { return &range->current; }
        Iterator& operator++() {
            range->advance();
            return *this;
        }
        void operator++(int) { range->advance(); }
        bool operator==(std::default_sentinel_t) const { return range->current.match == nullptr; }

    private:
        friend class RE_Text_Matches;
        explicit Iterator(RE_Text_Matches& matches) : range(&matches) {}

        RE_Text_Matches* range;
    };

    /// From this unit on.
    RE_Text_Matches(const RE_Tree& tree, RE_Text& text, RE_Offsets offsets = RE_Offsets::bytes,
                    std::size_t unit = 0, const RE_Search_Limits& limits = {});

    Iterator begin();
    std::default_sentinel_t end() const { return {}; }
    /// The next match, or null after the last: the same walk without iterators.
    const RE_Text_Match* next();
    /// A match that starts at exactly this unit, or null. The walk goes on from where it was.
    const RE_Text_Match* matchAt(std::size_t unit);
    /// `RE_Text_Search::unitAt`.
    std::optional<std::size_t> unitAt(std::size_t offset) { return search.unitAt(offset, current.offsets); }
    /// The text is another one now: the walk is that of a new object, but keeps what later searches can use.
    void beginAnew(RE_Offsets offsets, const RE_Search_Limits& limits);
    /// The walk goes on from this unit, which may be anywhere, as if it began there.
    void goTo(std::size_t unit) {
        position = unit;
        previousEnd.reset();
    }
    RE_Search_Report report() const { return search.report(); }

private:
    void advance() { next(); }

    RE_Text_Search search;
    RE_Text_Match current;
    std::size_t position;
    std::optional<std::size_t> previousEnd;
    bool begun = false;
};

/// The matches with places in bytes, or what else is asked for.
inline RE_Text_Matches reFindAll(const RE_Tree& tree, RE_Text& text, RE_Offsets offsets = RE_Offsets::bytes,
                                 const RE_Search_Limits& limits = {}) {
    return RE_Text_Matches(tree, text, offsets, 0, limits);
}
/// The extent of the first match.
CORVANE_REGEXP_EXPORT std::optional<RE_Extent> reFindFirst(const RE_Tree& tree, RE_Text& text,
                                                           RE_Offsets offsets = RE_Offsets::bytes);
/// What `RE_Tree::split` gives: the parts between the matches, as far as these were found. `report` may be null.
CORVANE_REGEXP_EXPORT std::vector<RE_Extent> reSplit(const RE_Tree& tree, RE_Text& text,
                                                     RE_Offsets offsets = RE_Offsets::bytes,
                                                     const RE_Search_Limits& limits = {},
                                                     RE_Search_Report* report = nullptr);

/// Which matches are replaced, and how.
struct RE_Text_Order {
    bool adjustCase = false;  ///< the text for a match takes the case of the match
    std::size_t which = 0;    ///< the number of the only match to replace, counted from 1; 0 for all of them
    RE_Search_Limits limits = {};
    RE_Offsets offsets = RE_Offsets::bytes;  ///< of the matches that a writer is passed
};

/// Appends to `out` what replaces a match, in the encoding of the text. What it throws ends the replacement.
using RE_Text_Writer = std::function<void(const RE_Text_Match& match, std::string& out)>;

/// The bytes of the text, in its encoding, with matches replaced. What no match covers is copied byte by byte, ill-formed
/// parts included. Where something breaks the searches off, the text after the last match found stays as it is. Replacements
/// may refer to all of the text, so all is converted first. `report` and `matches` (those that counted) may be null.
CORVANE_REGEXP_EXPORT std::string reReplaceAll(const RE_Tree& tree, RE_Text& text,
                                               const RE_Replaceable& replacement,
                                               const RE_Text_Order& order = {},
                                               RE_Search_Report* report = nullptr,
                                               std::size_t* matches = nullptr);
/// The same by a function, which writes what it likes: case is not adjusted.
CORVANE_REGEXP_EXPORT std::string reReplaceEach(const RE_Tree& tree, RE_Text& text,
                                                const RE_Text_Writer& writer, const RE_Text_Order& order = {},
                                                RE_Search_Report* report = nullptr,
                                                std::size_t* matches = nullptr);
/// Appends units in this encoding.
CORVANE_REGEXP_EXPORT void reAppendEncoded(std::string& out, RE_Encoding encoding, std::u16string_view units);
