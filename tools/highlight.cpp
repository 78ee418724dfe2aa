// Marking of matched text in the colours of a terminal. Every call closes the marks that it opens, so each
// piece of output can be shown by itself.
#include "tools/highlight.h"

#include "tools/usage_error.h"
#include "tools/utf8.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace tool {
namespace {

// Bold red, as search tools mark matches; the second sequence resets everything.
constexpr std::string_view markOn = "\033[1;31m";
constexpr std::string_view markOff = "\033[0m";

// The variables are conventions: NO_COLOR with any text refuses colours, TERM=dumb has none.
bool terminalHasColors() {
    const char* terminal = std::getenv("TERM");
    const char* noColor = std::getenv("NO_COLOR");
    const bool refused = noColor != nullptr && *noColor != '\0';
    return !refused && terminal != nullptr && std::string_view(terminal) != "dumb" &&
           ::isatty(STDOUT_FILENO) != 0;
}

}  // namespace

bool colorWanted(const std::string& when) {
    if (when == "always") return true;
    if (when == "never") return false;
    if (when == "auto") return terminalHasColors();
    throw UsageError("--color takes auto, always or never");
}

void appendHighlighted(std::string& out, std::u16string_view text, Extent line,
                       std::span<const Extent> matches) {
    // The first unit that is not written yet.
    std::size_t at = line.start;
    for (const Extent& match : matches) {
        // A match may begin on an earlier line or continue on a later one; only its part on this line counts.
        const std::size_t begin = std::clamp(match.start, at, line.end());
        const std::size_t end = std::clamp(match.end(), begin, line.end());
        // Also an empty match, which has nothing to mark.
        if (begin == end) continue;
        appendUtf8(out, text.substr(at, begin - at));
        out += markOn;
        appendUtf8(out, text.substr(begin, end - begin));
        out += markOff;
        at = end;
    }
    appendUtf8(out, text.substr(at, line.end() - at));
}

}  // namespace tool
