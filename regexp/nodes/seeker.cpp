#include "regexp/nodes/seeker.h"

#include "regexp/nodes/string.h"
#include "regexp/seek/scan.h"

const char16_t* StringCharSeeker::scan(const char16_t* p, RE_Search_Info& info) const {
    const RE_Unit_Set& units = *set;
    return scanForward(p, info.subjectEnd, info,
                       [&units](const char16_t* at) { return units.contains(*at); });
}

const char16_t* StringStringSeeker::scan(const char16_t* p, RE_Search_Info& info) const {
    if (static_cast<std::uint64_t>(info.subjectEnd - p) < string.length) {
        return nullptr;
    }
    const char16_t* const end = info.subjectEnd - string.length + 1;
    return scanForward(p, end, info, [this](const char16_t* at) { return string.matchesAt(at); });
}

std::string StringStringSeeker::label() const {
    return "Seek text of " + std::to_string(string.length) + " units";
}
