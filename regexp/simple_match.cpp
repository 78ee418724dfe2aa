#include "regexp/simple_match.h"

#include "host/i18n.h"
#include "regexp/tree.h"

#include <memory>

namespace {

bool matchesAnywhere(const char* subject, const char* pattern, bool ignoreCase) {
    const RE_Tree tree(to_ustring(pattern), ignoreCase);
    const std::unique_ptr<RE_Results> results(tree.match(to_ustring(subject), 0));
    return results != nullptr;
}

}  // namespace

bool reMatch(const char* subject, const char* pattern) {
    return matchesAnywhere(subject, pattern, false);
}

bool reMatchi(const char* subject, const char* pattern) {
    return matchesAnywhere(subject, pattern, true);
}
