// Searches that know a part of the text, and then more of it.
//
// A search of what is known begins no attempt that may look further. If it finds nothing, those attempts have failed for
// good; as much again is converted, and the search goes on with the attempts after them. What is known doubles each time, so
// that all conversions and all new beginnings together cost no more than the last.
#include "regexp/text/text_search.h"

#include "regexp/analysis/reach.h"
#include "regexp/base/earlier_interrupt.h"
#include "regexp/find_all.h"

#include <algorithm>

namespace {

constexpr std::size_t kFirstUnits = 16384;

}  // namespace

RE_Text_Search::RE_Text_Search(const RE_Tree& pattern, RE_Text& subject, const RE_Search_Limits& searchLimits)
    : tree(pattern), text(subject), limits(searchLimits) {}

RE_Text_Search::~RE_Text_Search() = default;

void RE_Text_Search::beginAnew(const RE_Search_Limits& searchLimits) {
    // What broke off is of no more use: it may have left the state within an attempt.
    if (limits.areAny() || searchLimits.areAny() || !isComplete()) {
        sequence.reset();
    }
    limits = searchLimits;
    now = {};
}

const RE_Results* RE_Text_Search::find(std::size_t unit, std::size_t latestStart) {
    if (now.stopped != RE_Search_Outcome::noMatch) {
        return nullptr;
    }
    if (unit < now.latestUnit) {
        turnBack();
    }
    now.latestUnit = unit;
    if (now.sequenceIsWhole) {
        return findKnown(unit, latestStart);
    }
    const RE_Earlier_Interrupt earlier(tree.isInterruptible());
    for (;;) {
        if (now.sequenceIsWhole || (now.hasSequence && unit < now.finalStarts)) {
            const RE_Results* const match = findKnown(unit, latestStart);
            if (match != nullptr || now.sequenceIsWhole || now.stopped != RE_Search_Outcome::noMatch ||
                latestStart < now.finalStarts) {
                return match;
            }
            unit = now.finalStarts;
        }
        if (!knowMore(unit)) {
            return nullptr;
        }
    }
}

std::optional<std::size_t> RE_Text_Search::unitAt(std::size_t offset, RE_Offsets counted) {
    if (now.stopped != RE_Search_Outcome::noMatch) {
        return std::nullopt;
    }
    const RE_Earlier_Interrupt earlier(tree.isInterruptible());
    if (!text.isWhole() && text.offsetOf(text.known().size(), counted) <= offset) {
        finish();  // the text moves, and its memory comes before that of the sequence
    }
    stop(text.convertTo(offset, counted, limits, tree.isInterruptible()));
    return isComplete() ? std::optional(text.unitOf(offset, counted)) : std::nullopt;
}

// A sequence goes forward only. What is converted, and what is known of it, stays.
void RE_Text_Search::turnBack() {
    finish();
    now.sequenceIsWhole = false;
}

// The sequence does not outlive what it knows of the text, which moves as it grows.
const RE_Results* RE_Text_Search::findKnown(std::size_t unit, std::size_t latestStart) {
    if (unit > now.sequenceKnows) {
        return nullptr;
    }
    const std::size_t latest = now.sequenceIsWhole ? latestStart : std::min(latestStart, now.finalStarts - 1);
    const RE_Results* match = nullptr;
    try {
        match = sequence->find(unit, latest);
    } catch (...) {
        turnBack();
        sequence.reset();  // it may be within an attempt
        throw;
    }
    now.found = now.found || match != nullptr;
    if (match == nullptr) {
        const RE_Search_Report searched = sequence->report();
        stop(searched.isComplete() ? RE_Search_Outcome::noMatch : searched.outcome);
    }
    return match;
}

bool RE_Text_Search::knowMore(std::size_t unit) {
    if (reach == nullptr && !text.isWhole()) {
        reach = std::make_unique<RE_Reach>(tree.getFacts());
    }
    // Whoever goes on far ahead is given some text after that place, too.
    const std::size_t known = text.known().size();
    const std::size_t wanted =
        std::max({kFirstUnits, now.hasSequence ? 2 * now.sequenceKnows : known, unit + kFirstUnits});
    const bool all = reach != nullptr && reach->needsAll();
    finish();
    const RE_Search_Outcome outcome =
        text.convert(all ? RE_Text::all : wanted, limits, tree.isInterruptible());
    if (outcome != RE_Search_Outcome::noMatch) {
        stop(outcome);
        return false;
    }
    renew();
    return true;
}

// What the sequence took counts on. Where there is a ceiling its memory goes before the text asks for more.
void RE_Text_Search::finish() {
    if (!now.hasSequence) {
        return;
    }
    now.spent = report();
    now.hasSequence = false;
    if (limits.areAny() || !isComplete()) {
        sequence.reset();
    }
}

void RE_Text_Search::renew() {
    RE_Search_Limits left = limits;
    if (left.steps != RE_Search_Limits::unlimited) {
        left.steps -= std::min(left.steps, now.spent.steps);
    }
    if (left.bytes != RE_Search_Limits::unlimited) {
        left.bytes -= std::min(left.bytes, text.memoryUse());
    }
    if (sequence.has_value()) {
        sequence->use(text.known());
    } else {
        sequence.emplace(tree, text.known(), limits.areAny() ? &left : nullptr);
    }
    now.hasSequence = true;
    now.stepsBefore = sequence->report().steps;
    now.sequenceKnows = text.known().size();
    now.sequenceIsWhole = text.isWhole();
    if (!now.sequenceIsWhole) {
        now.finalStarts = std::max(now.finalStarts, reach->finalStarts(text.known(), now.barriersSought));
        now.barriersSought = now.sequenceKnows;
    }
}

RE_Search_Report RE_Text_Search::report() const {
    RE_Search_Report all = now.spent;
    if (now.hasSequence) {
        const RE_Search_Report last = sequence->report();
        all.steps += last.steps - now.stepsBefore;
        all.peakBytes = std::max(all.peakBytes, last.peakBytes + text.memoryUse());
    }
    all.peakBytes = std::max(all.peakBytes, text.memoryUse());
    all.outcome = now.stopped != RE_Search_Outcome::noMatch ? now.stopped
                  : now.found                               ? RE_Search_Outcome::matched
                                                            : RE_Search_Outcome::noMatch;
    return all;
}

// --- a walk from match to match ---

std::optional<RE_Extent> RE_Text_Match::token(std::size_t index) const {
    if (!match->tookPart(index)) {
        return std::nullopt;
    }
    const RE_TokenInfo& info = match->tokens->slots[index];
    return extentOf(info.start, info.length);
}

std::optional<RE_Extent> RE_Text_Match::token(std::u16string_view name) const {
    return match->tokens != nullptr ? token(match->tokens->find(name)) : std::nullopt;
}

std::span<const std::byte> RE_Text_Match::tokenBytes(std::size_t index) const {
    if (!match->tookPart(index)) {
        return {};
    }
    const RE_TokenInfo& info = match->tokens->slots[index];
    return text->bytesOf(info.start, info.length);
}

RE_Text_Matches::RE_Text_Matches(const RE_Tree& tree, RE_Text& text, RE_Offsets offsets, std::size_t unit,
                                 const RE_Search_Limits& limits)
    : search(tree, text, limits), current(text, offsets), position(unit) {}

RE_Text_Matches::Iterator RE_Text_Matches::begin() {
    if (!begun) {
        next();
    }
    return Iterator(*this);
}

const RE_Text_Match* RE_Text_Matches::next() {
    begun = true;
    for (;;) {
        current.match = search.find(position);
        if (current.match == nullptr) {
            return nullptr;
        }
        position = current.match->nextIndex();
        const std::size_t end = current.match->matchStart + current.match->matchLength;
        if (previousEnd != end) {
            previousEnd = end;
            return &current;
        }
    }
}

const RE_Text_Match* RE_Text_Matches::matchAt(std::size_t unit) {
    current.match = search.find(unit, unit);
    return current.match != nullptr ? &current : nullptr;
}

void RE_Text_Matches::beginAnew(RE_Offsets offsets, const RE_Search_Limits& limits) {
    search.beginAnew(limits);
    current = RE_Text_Match(*current.text, offsets);
    position = 0;
    previousEnd.reset();
    begun = false;
}

std::optional<RE_Extent> reFindFirst(const RE_Tree& tree, RE_Text& text, RE_Offsets offsets) {
    RE_Text_Matches matches(tree, text, offsets);
    const RE_Text_Match* const match = matches.next();
    return match != nullptr ? std::optional(match->extent()) : std::nullopt;
}

std::vector<RE_Extent> reSplit(const RE_Tree& tree, RE_Text& text, RE_Offsets offsets,
                               const RE_Search_Limits& limits, RE_Search_Report* report) {
    std::vector<RE_Extent> parts;
    std::size_t from = 0;
    bool isFull = false;
    RE_Text_Matches walk(tree, text, offsets, 0, limits);
    for (const RE_Text_Match* match = walk.next(); match != nullptr && !isFull; match = walk.next()) {
        const RE_Results& found = match->units();
        const std::size_t start = found.matchStart;
        // Where the text has not been converted to its end, the match is not at it.
        const bool atEdge = start == 0 || (text.isWhole() && start == text.known().size());
        if (found.matchLength == 0 && atEdge) {
            continue;
        }
        parts.push_back(text.extentOf(from, start - from, offsets));
        from = start + found.matchLength;
        isFull = parts.size() > limits.bytes / sizeof(RE_Extent);
    }
    RE_Search_Report ended = walk.report();
    ended.outcome = isFull ? RE_Search_Outcome::memoryFull : ended.outcome;
    if (report != nullptr) {
        *report = ended;
    }
    if (ended.isComplete()) {
        text.convert(RE_Text::all);
    }
    parts.push_back(text.extentOf(from, text.known().size() - from, offsets));
    return parts;
}
