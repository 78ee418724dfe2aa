// The scans of the start finders. Each stops at the first position that is not ruled out, and reads nothing
// outside of the subject.
#include "regexp/nodes/seeker.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/graph_context.h"
#include "regexp/seek/scan.h"

#include <algorithm>

// Common units are near: they are found by looking at four before a vector scan would have begun.
const char16_t* StringCharSeeker::scan(const char16_t* p, RE_Search_Info& info) const {
    const char16_t* const nearby = p + std::min<std::ptrdiff_t>(info.subjectEnd - p, 4);
    for (; p < nearby; ++p) {
        if (set->contains(*p)) {
            return p;
        }
    }
    return scanForward(p, info.subjectEnd, info, [this](const char16_t* at, const char16_t* stop) {
        return findClass(at, stop, members);
    });
}

std::string StringStringSeeker::label() const {
    return "Seek text of " + std::to_string(string.length) + " units";
}

const char16_t* StringWindowSeeker::scan(const char16_t* p, RE_Search_Info& info) const {
    // A window has to be readable as a whole. No literal is shorter, so no match starts later.
    const std::size_t reach = filter.width() - 1;
    if (static_cast<std::size_t>(info.subjectEnd - p) <= reach) {
        return nullptr;
    }
    return scanForward(p, info.subjectEnd - reach, info, [&](const char16_t* at, const char16_t* stop) {
        return filter.find(at, stop, info.subjectEnd);
    });
}

const char16_t* StringBehindSeeker::scan(const char16_t* p, RE_Search_Info& info) const {
    const std::size_t length = finder.length();
    // A literal that ends at `p` counts: it begins that much earlier.
    const char16_t* const from = info.indexOf(p) > length ? p - length : info.subjectBegin;
    const char16_t* const found = finder.find(from, info.subjectEnd, info);
    return found != nullptr ? found + length : nullptr;
}

StringInnerSeeker::StringInnerSeeker(RE_Graph_Context& context, RE_Required_Literal literal,
                                     std::shared_ptr<const RE_Unit_Set> firstUnits)
    : RE_Seeker(context),
      stretches(std::move(literal), context.nextMemoRow()),
      first(std::move(firstUnits)),
      starts(*first, true) {}

const char16_t* StringInnerSeeker::startWithin(const RE_Literal_Stretches::Stretch& stretch,
                                               RE_Search_Info& info) const {
    if (!ofLines) {
        return scanForward(
            stretch.begin, stretch.end + 1, info,
            [this](const char16_t* at, const char16_t* stop) { return findClass(at, stop, starts); });
    }
    // Starts of lines: the begin of the stretch, or after a line feed within it.
    if (info.atBegin(stretch.begin) || stretch.begin[-1] == u'\n') {
        return stretch.begin;
    }
    const char16_t* const lineEnd =
        scanForward(stretch.begin, stretch.end, info, [](const char16_t* at, const char16_t* stop) {
            return findUnit(at, stop, {u'\n', u'\n'});
        });
    return lineEnd != nullptr ? lineEnd + 1 : nullptr;
}

const char16_t* StringInnerSeeker::scan(const char16_t* p, RE_Search_Info& info) const {
    return stretches.nextStart(
        p, info, [&](const RE_Literal_Stretches::Stretch& stretch) { return startWithin(stretch, info); });
}

RE_Meaning RE_Seeker::meaning() const {
    return RE_Meanings::Nothing{nextNode};
}
