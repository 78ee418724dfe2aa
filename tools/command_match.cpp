// `cvregexp match`: the lines of files that hold a match of a pattern, or of one of several.
#include "tools/command.h"
#include "tools/exit_status.h"
#include "tools/interrupt.h"
#include "tools/match_options.h"
#include "tools/pattern_options.h"
#include "tools/search/search_pattern.h"
#include "tools/search/search_run.h"
#include "tools/warning_report.h"

namespace tool {

int runMatch(const Arguments& words) {
    Corvane::regexp::CompileOptions compile;
    ParsedArguments arguments = parseArguments(words, "match [OPTION...] PATTERN [FILE...]",
                                               withPatternOptions(matchOptions(), compile));
    // First the patterns, then the files: takePatterns removes the pattern from the positional words.
    PatternRequest request;
    if (arguments.has("files")) {
        request.texts = {u""};
    } else {
        request = takePatterns(arguments);
    }
    MatchSettings settings = readMatchSettings(arguments, request.texts.size());
    // Before compiling, so that no signal from here on leaves a half-written answer.
    catchInterrupts();
    const SearchPattern pattern(request, settings.modes, compile);
    for (const auto& given : pattern.given()) {
        printWarnings(given->text(), given->warnings());
        if (!arguments.has("fixed-strings")) printHints(given->text(), hintsOfPattern(given->text()));
    }
    settings.run.mayUseThreads = pattern.scripts() == nullptr;
    const int status = searchFiles(pattern.patterns(), settings.run);
    if (pattern.scripts()) pattern.scripts()->finish();
    return status;
}

}  // namespace tool
