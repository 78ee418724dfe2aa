// `cvregexp check`: compiles a pattern and shows what the compiler had to say about it.
#include "tools/command.h"
#include "tools/compiled_pattern.h"
#include "tools/exit_status.h"
#include "tools/json_output.h"
#include "tools/pattern_options.h"
#include "tools/usage_error.h"
#include "tools/warning_report.h"

#include <iostream>

namespace po = boost::program_options;

namespace tool {
namespace {

po::options_description knownOptions(Corvane::regexp::CompileOptions& compile) {
    po::options_description known;
    known.add_options()("json", "print one JSON object for each warning")("help", "print this help");
    known.add(patternOptions()).add(compileOptions(compile));
    return known;
}

}  // namespace

int runCheck(const Arguments& words) {
    Corvane::regexp::CompileOptions compile;
    ParsedArguments arguments = parseArguments(words, "check [OPTION...] PATTERN", knownOptions(compile));
    const CompiledPattern pattern(takePattern(arguments), compile);
    if (!arguments.positionals.empty()) throw UsageError("check takes one pattern and nothing else");

    const std::vector<PatternWarning> warnings = pattern.warnings();
    for (const PatternWarning& warning : warnings) {
        if (arguments.has("json")) {
            writeJsonWarning(std::cout, pattern.text(), warning);
        } else {
            std::cout << describeWarning(pattern.text(), warning);
        }
    }
    return warnings.empty() ? exitPositive : exitNegative;
}

}  // namespace tool
