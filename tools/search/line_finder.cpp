// Which lines of a block hold a match.
#include "tools/search/line_finder.h"

#include <algorithm>
#include <cstring>

namespace tool {
namespace {

bool isSame(std::span<const RE_Tree* const> one, std::span<const RE_Tree* const> other) {
    return std::ranges::equal(one, other);
}

}  // namespace

// Matches over lines are found once more for their details, as the search for the end of the lines has gone on; so they
// have a source of their own.
LineFinder::LineFinder(const FinderPatterns& patterns) : patterns_(patterns), selecting_(patterns.selecting) {
    if (patterns.unit == SearchUnit::text || !isSame(patterns.selecting, patterns.detailed))
        detailed_.emplace(patterns.detailed);
}

// A carriage return before a line feed is part of the line end. Searches of whole blocks know nothing of it, so blocks that
// hold one are searched by line.
void LineFinder::use(std::string_view block) {
    block_.assign(block, patterns_.terminator);
    unit_ = patterns_.unit;
    if (unit_ == SearchUnit::block && std::memchr(block.data(), '\r', block.size()) != nullptr)
        unit_ = SearchUnit::line;
    at_ = 0;
    lines_ = units_ = {};
    pending_.reset();
    previousEnd_.reset();
    detailedIsOnBlock_ = false;
    selectingIsOnBlock_ = unit_ != SearchUnit::line;
    if (selectingIsOnBlock_) selecting_.use(block_.units());
}

std::optional<Span> LineFinder::next() {
    switch (unit_) {
        case SearchUnit::block:
            return nextInBlock();
        case SearchUnit::line:
            return nextByLine();
        case SearchUnit::text:
            return nextInText();
    }
    return std::nullopt;
}

Span LineFinder::noteFound(const Span& lines, std::size_t firstMatch) {
    units_ = lines;
    firstMatch_ = firstMatch;
    lines_ = {block_.byteOfLine(lines.begin), block_.byteOfLine(lines.end)};
    return lines_;
}

std::optional<Span> LineFinder::nextInBlock() {
    const std::u16string_view units = block_.units();
    // Nothing is on a line after the last line end.
    if (at_ >= units.size()) return std::nullopt;
    if (!selectingIsOnBlock_) {
        selecting_.use(units);
        selectingIsOnBlock_ = true;
    }
    const std::optional<FoundMatch> match = selecting_.find(at_);
    if (!match) return std::nullopt;
    const std::size_t start = match->results->matchStart;
    if (start == units.size() && units.back() == static_cast<unsigned char>(patterns_.terminator))
        return std::nullopt;
    Span line = block_.lineAround(start);
    at_ = line.end;
    return noteFound(line, start);
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

std::optional<Span> LineFinder::nextByLine() {
    const std::u16string_view units = block_.units();
    while (at_ < units.size()) {
        const Span line{at_, block_.lineEnd(at_)};
        at_ = line.end;
        const Span subject = subjectOf(line);
        selecting_.use(units.substr(subject.begin, subject.size()));
        if (const std::optional<FoundMatch> match = selecting_.find(0))
            return noteFound(line, line.begin + match->results->matchStart);
    }
    return std::nullopt;
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
std::optional<Span> LineFinder::nextInText() {
    std::optional<Span> match = pending_ ? std::exchange(pending_, std::nullopt) : findNextInText();
    if (!match) return std::nullopt;
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

std::u16string_view LineFinder::useForDetails(MatchSource& source) {
    if (unit_ == SearchUnit::text) {
        if (!detailedIsOnBlock_) source.use(block_.units());
        detailedIsOnBlock_ = true;
        return block_.units();
    }
    const Span subject = subjectOf(units_);
    const std::u16string_view line = block_.units().substr(subject.begin, subject.size());
    if (!detailed_) selectingIsOnBlock_ = false;
    source.use(line);
    return line;
}

}  // namespace tool
