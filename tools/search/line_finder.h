// Which lines of a block hold a match, and where in them.
//
// Three ways give the same answer where all are possible. `block` searches the whole block as one subject, which needs a
// pattern that was compiled for lines apart; `line` makes each line a subject of its own; `text` lets matches span lines.
#pragma once

#include "tools/search/match_source.h"
#include "tools/search/units_block.h"

#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

namespace tool {

// A match within whole lines of a block.
struct LineMatch {
    const RE_Results* results;  // positions are units of `text`
    std::size_t pattern;
    std::u16string_view text;  // the subject it was found in
    std::size_t unit;          // where it begins: units from the beginning of the block
    Span bytes;                // of the block
};

enum class SearchUnit { block, line, text };

// What a finder searches with. Trees live longer than the finder.
struct FinderPatterns {
    std::span<const RE_Tree* const> selecting;  // which lines
    std::span<const RE_Tree* const> detailed;   // where in them, and which of the patterns
    SearchUnit unit = SearchUnit::line;
    char terminator = '\n';
};

// Belongs to one thread. All functions may throw Interrupted.
class LineFinder {
public:
    explicit LineFinder(const FinderPatterns& patterns);

    // Begins with a block of whole lines, which must outlive the use of its results.
    void use(std::string_view block);
    // Goes on to the next lines: one line that holds a match, or where matches span lines, all that they touch. False when
    // there are none.
    bool next();
    // Whether they are always one line.
    bool findsSingleLines() const { return patterns_.unit != SearchUnit::text; }
    // Those lines, in bytes of the block.
    const Span& lines();
    // Calls `visit` with each match in the lines that `next` found last; in other lines there are none. Ends when it returns
    // false.
    template <class Visit>
    void forEachMatch(const Span& lines, Visit visit);
    // Units of the block.
    std::size_t unitCount() const { return block_.units().size(); }

private:
    bool nextInBlock();
    bool nextByLine();
    bool nextInText();
    std::optional<Span> findNextInText();
    // The lines that were found, in units. True.
    bool noteFound(const Span& lines, std::size_t firstMatch);
    Span subjectOf(const Span& line) const;
    std::u16string_view lineSubject() const;
    std::u16string_view useForDetails();

    FinderPatterns patterns_;
    MatchSource selecting_;
    MatchSource detailed_;
    bool areSame_;  // both search with the same patterns
    UnitsBlock block_;
    SearchUnit unit_ = SearchUnit::line;  // for this block
    std::size_t at_ = 0;                  // units: where the next search begins
    // Found last: the lines in bytes, once they were asked for, and in units, and where the first match begins, in units.
    std::optional<Span> lines_;
    Span units_;
    std::size_t firstMatch_ = 0;
    bool detailedIsOnBlock_ = false;  // of a text; otherwise it is on a line
    // Of the line found last, where the search for lines is on that line and finds the details as well: then no expression
    // is evaluated twice.
    std::optional<FoundMatch> current_;
    std::optional<Span> pending_;  // in a text: a match that was found beyond the lines that were returned
    std::optional<std::size_t> previousEnd_;  // in a text: of the match found last
};

template <class Visit>
void LineFinder::forEachMatch(const Span& lines, Visit visit) {
    if (lines_ != lines) return;
    const std::u16string_view subject = current_ ? lineSubject() : useForDetails();
    const std::size_t base = unit_ == SearchUnit::text ? 0 : units_.begin;
    // Where the matches have led to, in both.
    std::size_t byte = lines.begin;
    std::size_t unit = units_.begin;
    const auto advanceTo = [&](std::size_t target) {
        byte =
            block_.unitsAreBytes() ? target : byte + byteOfUnit(block_.bytes().substr(byte), target - unit);
        unit = target;
        return byte;
    };
    const auto visitInBlock = [&](const FoundMatch& match) {
        const std::size_t start = base + match.results->matchStart;
        if (start >= units_.end && start != firstMatch_) return false;
        const std::size_t begin = advanceTo(start);
        const std::size_t end = advanceTo(start + match.results->matchLength);
        return visit(LineMatch{match.results, match.pattern, subject, start, {begin, end}});
    };
    if (current_) {
        selecting_.forEach(std::exchange(current_, std::nullopt), visitInBlock);
    } else {
        detailed_.forEach(firstMatch_ - base, visitInBlock);
    }
}

}  // namespace tool
