// The finder of one literal, and the stretches that lead up to what it finds.
#include "regexp/seek/required_literal.h"

#include <algorithm>

RE_Text_Finder::RE_Text_Finder(std::u16string literalText, bool ignoreCase)
    : text(std::move(literalText)), folds(ignoreCase), search(literal()), likely(search.likelihood()) {}

// For prefixes the scan ends where the farthest place is still inside of the subject: no prefix fits further
// on.
const char16_t* RE_Text_Finder::find(const char16_t* p, RE_Search_Info& info) const {
    if (members) {
        return scanForward(p, info.subjectEnd, info, [this](const char16_t* at, const char16_t* stop) {
            return findClass(at, stop, *members);
        });
    }
    if (!prefixes) {
        return search.find(literal(), p, info);
    }
    const std::size_t reach = prefixes->reach();
    if (static_cast<std::size_t>(info.subjectEnd - p) <= reach) {
        return nullptr;
    }
    return scanForward(p, info.subjectEnd - reach, info, [this](const char16_t* at, const char16_t* stop) {
        return findPrefix(at, stop, *prefixes);
    });
}

bool RE_Text_Finder::isPunctuation() const {
    return !text.empty() && std::ranges::none_of(text, isWordUnit);
}

std::string RE_Text_Finder::label() const {
    if (members) {
        return "one of " + std::to_string(set->size()) + " units";
    }
    return prefixes ? "prefixes by " + std::to_string(prefixes->depth) + " units"
                    : "text of " + std::to_string(text.size()) + " units";
}

// A known stretch answers first: `p` within it has the same next literal, at its end. Going back stops at the
// nearest unit that may not precede the literal; the units read are counted once, forward.
bool RE_Literal_Stretches::from(const char16_t* p, RE_Search_Info& info, Stretch& stretch) const {
    if (const RE_Measured_Run* known = info.measuredRun(row); known != nullptr && known->holds(p)) {
        stretch = {p, known->end};
        return true;
    }
    if (static_cast<std::uint64_t>(info.subjectEnd - p) < required.leastBefore) {
        return false;
    }
    const char16_t* const place = required.finder.find(p + required.leastBefore, info);
    info.noteScan(static_cast<std::size_t>((place != nullptr ? place : info.subjectEnd) - p));
    if (place == nullptr) {
        return false;
    }
    const char16_t* const barrier = scanBackward(
        p, place, info,
        [this](const char16_t* begin, const char16_t* end) { return findLastClass(begin, end, outside); });
    stretch = {barrier != nullptr ? barrier + 1 : p, place - required.leastBefore};
    // A scan that was interrupted has found no barrier that one could rely on.
    if (stretch.begin <= stretch.end && !info.wasInterrupted()) {
        info.noteRun(row, {stretch.begin, stretch.end});
    }
    return !info.wasInterrupted();
}

const char16_t* RE_Literal_Stretches::nextStart(const char16_t* p, RE_Search_Info& info) const {
    return nextStart(p, info, [](const Stretch& stretch) { return stretch.begin; });
}
