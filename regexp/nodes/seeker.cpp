#include "regexp/nodes/seeker.h"

#include "regexp/seek/scan.h"

const char16_t* StringCharSeeker::scan(const char16_t* p, RE_Search_Info& info) const {
    return scanForward(p, info.subjectEnd, info, [this](const char16_t* at, const char16_t* stop) {
        return findClass(at, stop, members);
    });
}

std::string StringStringSeeker::label() const {
    return "Seek text of " + std::to_string(string.length) + " units";
}
