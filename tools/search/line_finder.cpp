// Which lines of a block hold a match.
#include "tools/search/line_finder.h"

#include <algorithm>
#include <utility>

namespace tool {
// Details are looked for from a line on that was found, while the search for lines has gone on or will: so each has a
// state of its own.
LineFinder::LineFinder(const FinderPatterns& patterns)
    : patterns_(patterns),
      selecting_(patterns.selecting),
      detailed_(patterns.detailed),
      areSame_(std::ranges::equal(patterns.selecting, patterns.detailed)) {}

// A carriage return before a line feed is part of the line end.
void LineFinder::use(std::string_view block) {
    block_.assign(block, patterns_.terminator);
    unit_ = patterns_.unit;
    if (unit_ == SearchUnit::block && !block_.unifyLineEnds()) unit_ = SearchUnit::line;
    at_ = 0;
    lines_.reset();
    current_.reset();
    units_ = {};
    pending_.reset();
    previousEnd_.reset();
    detailedIsOnBlock_ = false;
    if (unit_ != SearchUnit::line) selecting_.use(block_.unified());
}

bool LineFinder::next() {
    current_.reset();
    switch (unit_) {
        case SearchUnit::block:
            return nextInBlock();
        case SearchUnit::line:
            return nextByLine();
        case SearchUnit::text:
            return nextInText();
    }
    return false;
}

bool LineFinder::noteFound(const Span& lines, std::size_t firstMatch) {
    units_ = lines;
    firstMatch_ = firstMatch;
    lines_.reset();
    return true;
}

const Span& LineFinder::lines() {
    if (!lines_) {
        const std::size_t begin = block_.byteOfLine(units_.begin);
        lines_ = Span{begin, block_.byteOfLine(units_.end)};
    }
    return *lines_;
}

bool LineFinder::nextInBlock() {
    const std::u16string_view units = block_.unified();
    // Nothing is on a line after the last line end.
    while (at_ < units.size()) {
        const std::optional<FoundMatch> match = selecting_.find(at_);
        if (!match) return false;
        const std::size_t start = match->results->matchStart;
        if (start == units.size() && units.back() == static_cast<unsigned char>(patterns_.terminator))
            return false;
        if (block_.isWithinLineEnd(start)) {
            at_ = start + 1;
            continue;
        }
        const Span line = block_.lineAround(start);
        at_ = line.end;
        return noteFound(line, start);
    }
    return false;
}

// What is searched of a line: all but its end.
Span LineFinder::subjectOf(const Span& line) const {
    const std::u16string_view units = block_.units();
    Span subject = line;
    const char16_t terminator = static_cast<unsigned char>(patterns_.terminator);
    if (subject.size() == 0 || units[subject.end - 1] != terminator) return subject;
    --subject.end;
    if (terminator == u'\n' && subject.size() != 0 && units[subject.end - 1] == u'\r') --subject.end;
    return subject;
}

bool LineFinder::nextByLine() {
    const std::u16string_view units = block_.units();
    while (at_ < units.size()) {
        const Span line{at_, block_.lineEnd(at_)};
        at_ = line.end;
        const Span subject = subjectOf(line);
        selecting_.use(units.substr(subject.begin, subject.size()));
        if (const std::optional<FoundMatch> match = selecting_.find(0)) {
            if (areSame_) current_ = match;
            return noteFound(line, line.begin + match->results->matchStart);
        }
    }
    return false;
}

// A match of the text, in units. An empty one that directly follows another is left out.
std::optional<Span> LineFinder::findNextInText() {
    while (at_ <= block_.units().size()) {
        const std::optional<FoundMatch> match = selecting_.find(at_);
        if (!match) break;
        const std::size_t start = match->results->matchStart;
        const std::size_t end = start + match->results->matchLength;
        at_ = end + (start == end ? 1 : 0);
        const bool isRepeated = start == end && previousEnd_ == start;
        previousEnd_ = end;
        if (!isRepeated) return Span{start, end};
    }
    at_ = block_.units().size() + 1;
    return std::nullopt;
}

// The lines of a match, and those of all further matches that touch them. A match that ends with a line end does not reach
// the next line.
bool LineFinder::nextInText() {
    std::optional<Span> match = pending_ ? std::exchange(pending_, std::nullopt) : findNextInText();
    if (!match) return false;
    const std::size_t first = match->begin;
    Span lines = block_.lineAround(first);
    do {
        const std::size_t last = match->size() == 0 ? match->begin : match->end - 1;
        if (last >= lines.end) lines.end = block_.lineEnd(last);
        match = findNextInText();
    } while (match && match->begin < lines.end);
    pending_ = match;
    return noteFound(lines, first);
}

std::u16string_view LineFinder::useForDetails() {
    if (unit_ == SearchUnit::text) {
        if (!detailedIsOnBlock_) detailed_.use(block_.units());
        detailedIsOnBlock_ = true;
        return block_.units();
    }
    detailed_.use(lineSubject());
    return lineSubject();
}

std::u16string_view LineFinder::lineSubject() const {
    const Span subject = subjectOf(units_);
    return block_.units().substr(subject.begin, subject.size());
}

}  // namespace tool
