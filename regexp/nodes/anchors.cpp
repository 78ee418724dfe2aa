// Seeks of the anchors, and what they mean.
//
// A position and the unit that makes an anchor hold there differ by one for the anchors that look back. Each
// scan below says which of the two it is about.
#include "regexp/nodes/anchors.h"

#include "regexp/graph/meaning.h"
#include "regexp/seek/kernels.h"
#include "regexp/seek/scan.h"
#include "regexp/state/search_info.h"
#include "regexp/units/unit_set.h"

namespace {

/// Made once per process; read by all threads.
const RE_Class_Scan& unitsOutsideWords() {
    static const RE_Class_Scan scan(RE_Unit_Classes::get().noWords, true);
    return scan;
}

}  // namespace

bool RE_Anchor::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    return holdsAt(subject + pos, info);
}

const char16_t* RE_Edge_Anchor::scan(const char16_t* p, RE_Search_Info& info) const {
    const char16_t* const unit =
        scanForward(p, info.subjectEnd, info,
                    [this](const char16_t* at, const char16_t* stop) { return firstUnit(at, stop); });
    // The anchor holds after the unit, or in front of it. At the end of the subject one that ends something
    // holds without a unit, unless the scan was broken off and the units in between are unknown.
    if (edge == Edge::start) {
        return unit != nullptr ? unit + 1 : nullptr;
    }
    return unit != nullptr || info.wasInterrupted() ? unit : info.subjectEnd;
}

const char16_t* RE_Edge_Anchor::scanBack(const char16_t* p, std::size_t count, RE_Search_Info& info) const {
    const auto last = [this](const char16_t* from, const char16_t* to) { return lastUnit(from, to); };
    // The positions are those from p to p + count, so for an end that many units and one more count.
    if (edge == Edge::end) {
        return info.atEnd(p + count) ? p + count : scanBackward(p, p + count + 1, info, last);
    }
    // For a start the units are those before the positions: from p - 1 on, where there is one.
    const char16_t* const unit = scanBackward(info.atBegin(p) ? p : p - 1, p + count, info, last);
    if (unit != nullptr) {
        return unit + 1;
    }
    // No unit was found, but the start of the subject counts as one.
    return info.atBegin(p) && !info.wasInterrupted() ? p : nullptr;
}

const char16_t* RE_Line_Anchor::firstUnit(const char16_t* p, const char16_t* end) const {
    return findUnit(p, end, {u'\n', u'\n'});
}

const char16_t* RE_Line_Anchor::lastUnit(const char16_t* p, const char16_t* end) const {
    return findLastUnit(p, end, {u'\n', u'\n'});
}

const char16_t* RE_Word_Anchor::firstUnit(const char16_t* p, const char16_t* end) const {
    return findClass(p, end, unitsOutsideWords());
}

const char16_t* RE_Word_Anchor::lastUnit(const char16_t* p, const char16_t* end) const {
    return findLastClass(p, end, unitsOutsideWords());
}

const char16_t* RE_Start_String::seek(const char16_t* p, RE_Search_Info& info) const {
    return info.atBegin(p) ? p : nullptr;
}

const char16_t* RE_Start_String::rSeek(const char16_t* p, std::size_t, RE_Search_Info& info) const {
    return seek(p, info);
}

const char16_t* RE_End_String::seek(const char16_t* p, RE_Search_Info& info) const {
    return info.atEnd(p) ? p : info.subjectEnd;
}

const char16_t* RE_End_String::rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const {
    return info.atEnd(p + count) ? p + count : nullptr;
}

bool RE_End_Match::holdsAt(const char16_t* p, const RE_Search_Info& info) const {
    return info.atRequiredEnd(p);
}

const char16_t* RE_End_Match::seek(const char16_t* p, RE_Search_Info& info) const {
    // One position at most: the required end, if it has not been passed.
    return info.requiredEnd != nullptr && p <= info.requiredEnd ? info.requiredEnd : nullptr;
}

const char16_t* RE_End_Match::rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const {
    const char16_t* const end = seek(p, info);
    return end != nullptr && end <= p + count ? end : nullptr;
}

RE_Meaning RE_Start_Line::meaning() const {
    return RE_Meanings::Edge{RE_Meanings::Side::unit(u'\n', true), RE_Meanings::Side::any(), nextNode};
}

RE_Meaning RE_End_Line::meaning() const {
    return RE_Meanings::Edge{RE_Meanings::Side::any(), RE_Meanings::Side::unit(u'\n', true), nextNode};
}

RE_Meaning RE_Start_String::meaning() const {
    return RE_Meanings::Edge{RE_Meanings::Side::limit(), RE_Meanings::Side::any(), nextNode};
}

RE_Meaning RE_End_String::meaning() const {
    return RE_Meanings::Edge{RE_Meanings::Side::any(), RE_Meanings::Side::limit(), nextNode};
}

RE_Meaning RE_Start_Word::meaning() const {
    return RE_Meanings::Edge{RE_Meanings::Side::oneOf(RE_Unit_Classes::get().noWords, true),
                             RE_Meanings::Side::any(), nextNode};
}

RE_Meaning RE_End_Word::meaning() const {
    return RE_Meanings::Edge{RE_Meanings::Side::any(),
                             RE_Meanings::Side::oneOf(RE_Unit_Classes::get().noWords, true), nextNode};
}

// Where a body has to end is part of the state of the search, not of the subject.
RE_Meaning RE_End_Match::meaning() const {
    return RE_Meanings::Condition{nextNode, nullptr};
}
