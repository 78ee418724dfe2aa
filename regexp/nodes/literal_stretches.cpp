// From a literal in the text back to the starts from which it can be reached.
#include "regexp/nodes/literal_stretches.h"

bool RE_Literal_Stretches::from(const char16_t* p, RE_Search_Info& info, Stretch& stretch) const {
    if (const RE_Measured_Run* known = info.measuredRun(row); known != nullptr && known->holds(p)) {
        stretch = {p, known->end};
        return true;
    }
    // No match that starts here or later has room for the units before its literal.
    if (static_cast<std::uint64_t>(info.subjectEnd - p) < required.leastBefore) {
        return false;
    }
    const char16_t* const place = required.finder.find(p + required.leastBefore, info.subjectEnd, info);
    info.noteScan(static_cast<std::size_t>((place != nullptr ? place : info.subjectEnd) - p));
    if (place == nullptr) {
        return false;
    }
    // The last unit in front of the literal that may not precede it: starts are after that. Not before `p`,
    // as those starts have been tried.
    const char16_t* const barrier = scanBackward(
        p, place, info,
        [this](const char16_t* begin, const char16_t* end) { return findLastClass(begin, end, outside); });
    stretch = {barrier != nullptr ? barrier + 1 : p, place - required.leastBefore};
    // A scan that was broken off knows too few barriers: its stretch is not kept.
    if (stretch.begin <= stretch.end && !info.wasInterrupted()) {
        info.noteRun(row, {stretch.begin, stretch.end});
    }
    return !info.wasInterrupted();
}

const char16_t* RE_Literal_Stretches::nextStart(const char16_t* p, RE_Search_Info& info) const {
    return nextStart(p, info, [](const Stretch& stretch) { return stretch.begin; });
}
