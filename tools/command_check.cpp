// `cvregexp check`: compiles a pattern and shows what the compiler had to say about it. Nothing is searched.
//
// Warnings are the output of this command and go to standard output; for the other commands they accompany
// the output and go to standard error.
#include "tools/command.h"
#include "tools/compiled_pattern.h"
#include "tools/convert_text.h"
#include "tools/exit_status.h"
#include "tools/json_output.h"
#include "tools/pattern_options.h"
#include "tools/search/pattern_text.h"
#include "tools/usage_error.h"
#include "tools/warning_report.h"

#include <iostream>

namespace po = boost::program_options;

namespace tool {
namespace {

// Without withPatternOptions, which lists a command's own options under a heading: these have none.
po::options_description checkOptions(Corvane::regexp::CompileOptions& compile) {
    po::options_description known;
    auto add = known.add_options();
    add("json", flag(), "print one JSON object for each warning and hint");
    add("fix", flag(),
        "print the pattern as it was probably meant, with the corrections of all hints and warnings");
    add("help,h", flag(), "print this help");
    known.add(patternOptions()).add(compileOptions(compile));
    return known;
}

}  // namespace

int runCheck(const Arguments& words) {
    Corvane::regexp::CompileOptions compile;
    ParsedArguments arguments = parseArguments(words, "check [OPTION...] PATTERN", checkOptions(compile));
    PatternRequest request = takePattern(arguments);
    const RE_Flags flags = request.flags;
    const CompiledPattern pattern(std::move(request), compile);
    if (!arguments.positionals.empty()) throw UsageError("check takes one pattern and nothing else");

    const std::vector<RE_Hint> hints = hintsOfPattern(pattern.text());
    if (arguments.has("fix")) {
        std::cout << toUtf8(correctedPattern(reFollowHints(pattern.text(), hints), flags)) << '\n';
        return pattern.warnings().empty() && hints.empty() ? exitPositive : exitNegative;
    }
    // By position, as people read a pattern; JSON has the same order.
    const std::vector<PatternWarning> warnings = pattern.warnings();
    for (const PatternWarning& warning : warnings) {
        if (arguments.has("json")) {
            writeJsonWarning(std::cout, pattern.text(), warning);
        } else {
            std::cout << describeWarning(pattern.text(), warning);
        }
    }
    for (const RE_Hint& hint : hints) {
        if (arguments.has("json")) {
            writeJsonHint(std::cout, pattern.text(), hint);
        } else {
            std::cout << describeHint(pattern.text(), hint);
        }
    }
    // For scripts that reject a pattern with warnings, although every text is a pattern.
    return warnings.empty() ? exitPositive : exitNegative;
}

}  // namespace tool
