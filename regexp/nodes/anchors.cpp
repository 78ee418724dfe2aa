#include "regexp/nodes/anchors.h"

#include "regexp/search_info.h"
#include "regexp/seek/kernels.h"
#include "regexp/seek/scan.h"
#include "regexp/unit_set.h"

namespace {

const char16_t* findLineFeed(const char16_t* p, RE_Search_Info& info) {
    const char16_t* const feed =
        scanForward(p, info.subjectEnd, info, [](const char16_t* at, const char16_t* stop) {
            return findUnit(at, stop, {u'\n', u'\n'});
        });
    info.noteScan(static_cast<std::size_t>((feed != nullptr ? feed : info.subjectEnd) - p));
    return feed;
}

}  // namespace

bool RE_Anchor::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    return holdsAt(subject + pos, info);
}

const char16_t* RE_Anchor::seek(const char16_t* p, RE_Search_Info& info) const {
    const char16_t* const place =
        scanForward(p, info.subjectEnd + 1, info, [&](const char16_t* at, const char16_t* stop) {
            return firstWhere(at, stop, [&](const char16_t* q) { return holdsAt(q, info); });
        });
    info.noteScan(static_cast<std::size_t>((place != nullptr ? place : info.subjectEnd) - p));
    return place;
}

const char16_t* RE_Anchor::rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const {
    return scanBackward(p, p + count + 1, info, [&](const char16_t* from, const char16_t* to) {
        return lastWhere(from, to, [&](const char16_t* q) { return holdsAt(q, info); });
    });
}

const char16_t* RE_Start_String::seek(const char16_t* p, RE_Search_Info& info) const {
    return info.atBegin(p) ? p : nullptr;
}

const char16_t* RE_End_String::seek(const char16_t* p, RE_Search_Info& info) const {
    return info.atEnd(p) ? p : info.subjectEnd;
}

const char16_t* RE_Start_Line::seek(const char16_t* p, RE_Search_Info& info) const {
    if (holdsAt(p, info)) {
        return p;
    }
    const char16_t* const feed = findLineFeed(p, info);
    return feed != nullptr ? feed + 1 : nullptr;
}

const char16_t* RE_End_Line::seek(const char16_t* p, RE_Search_Info& info) const {
    const char16_t* const feed = findLineFeed(p, info);
    return feed != nullptr || info.wasInterrupted() ? feed : info.subjectEnd;
}

bool RE_End_Match::holdsAt(const char16_t* p, const RE_Search_Info& info) const {
    return info.atRequiredEnd(p);
}

const char16_t* RE_End_Match::seek(const char16_t* p, RE_Search_Info& info) const {
    return info.requiredEnd != nullptr && p <= info.requiredEnd ? info.requiredEnd : nullptr;
}

const char16_t* RE_End_Match::rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const {
    const char16_t* const end = seek(p, info);
    return end != nullptr && end <= p + count ? end : nullptr;
}
