// Finds what it looks for by vector scans, in blocks between which the monitor is consulted.
#include "regexp/seek/text_finder.h"

#include "regexp/seek/scan.h"

#include <algorithm>

RE_Text_Finder::RE_Text_Finder(std::u16string literalText, bool ignoreCase)
    : text(std::move(literalText)), folds(ignoreCase), search(literal()), likely(search.likelihood()) {}

const char16_t* RE_Text_Finder::find(const char16_t* p, const char16_t* end, RE_Scan_Monitor& monitor) const {
    if (members) {
        return scanForward(p, end, monitor, [this](const char16_t* at, const char16_t* stop) {
            return findClass(at, stop, *members);
        });
    }
    if (!prefixes) {
        return search.find(literal(), p, end, monitor);
    }
    const std::size_t reach = prefixes->reach();
    if (static_cast<std::size_t>(end - p) <= reach) {
        return nullptr;
    }
    return scanForward(p, end - reach, monitor, [this](const char16_t* at, const char16_t* stop) {
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
