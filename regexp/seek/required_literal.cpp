#include "regexp/seek/required_literal.h"

#include "regexp/seek/scan.h"

RE_Text_Finder::RE_Text_Finder(std::u16string literalText, bool ignoreCase)
    : text(std::move(literalText)), folds(ignoreCase), search(literal()), likely(search.likelihood()) {}

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

std::string RE_Text_Finder::label() const {
    if (members) {
        return "one of " + std::to_string(set->size()) + " units";
    }
    return prefixes ? "prefixes by " + std::to_string(prefixes->depth) + " units"
                    : "text of " + std::to_string(text.size()) + " units";
}
