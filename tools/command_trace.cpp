// `cvregexp trace`: one search, step by step, as lines or as a page that replays it.
//
// The log is written as it happens and printed afterwards, so a trace that is interrupted prints nothing.
#include "tools/command.h"
#include "tools/compiled_pattern.h"
#include "tools/convert_text.h"
#include "tools/exit_status.h"
#include "tools/input.h"
#include "tools/interrupt.h"
#include "tools/output_file.h"
#include "tools/pattern_options.h"
#include "tools/trace_page.h"
#include "tools/usage_error.h"
#include "tools/warning_report.h"

#include <iostream>

namespace po = boost::program_options;

namespace tool {
namespace {

po::options_description traceOptions(Corvane::regexp::CompileOptions& compile) {
    po::options_description options("Output");
    auto add = options.add_options();
    add("html", po::value<std::string>()->value_name("FILE"), "write a page that replays the search");
    add("offset", po::value<std::size_t>()->default_value(0)->value_name("N"), "search from unit N on");
    // A hundred thousand events are some tens of megabytes; a search that blows up has no end of them.
    add("limit", po::value<std::size_t>()->default_value(100'000)->value_name("N"), "keep at most N events");
    add("help,h", "print this help");
    return withPatternOptions(options, compile);
}

// A search without an event is one that was over before it began: the subject is shorter than any match.
void printLog(const TraceLog& log) {
    for (std::size_t index = 0; index != log.events().size(); ++index)
        std::cout << describeEvent(log, index) << '\n';
    if (log.events().empty() && log.dropped() == 0)
        std::cout << "no start is tried: fewer units are left than any match has\n";
    if (log.dropped() != 0) std::cout << "and " << log.dropped() << " events more\n";
}

}  // namespace

int runTrace(const Arguments& words) {
    Corvane::regexp::CompileOptions compile;
    ParsedArguments arguments =
        parseArguments(words, "trace [OPTION...] PATTERN [TEXT]", traceOptions(compile));
    const CompiledPattern pattern(takePattern(arguments), compile);
    if (arguments.positionals.size() > 1) throw UsageError("trace takes one pattern and one text");
    const std::u16string text =
        toUtf16(arguments.positionals.empty() ? readBytes("-") : arguments.positionals.front());
    const std::u16string_view subject = text;
    catchInterrupts();
    printWarnings(pattern.text(), pattern.warnings());

    // The limit bounds memory, not the search, which goes on unrecorded.
    TraceLog log(arguments.options["limit"].as<std::size_t>());
    // The tree searches without machine code and automaton, whose steps nobody could follow.
    const std::unique_ptr<RE_Results> found(pattern.tree().trace(
        subject.data(), subject.size(), arguments.options["offset"].as<std::size_t>(), log));
    if (interruptPending()) throw Interrupted();
    // The page in place of the lines: who wants to replay a search does not want to scroll past it.
    if (arguments.has("html")) {
        writeFile(arguments.options["html"].as<std::string>(),
                  tracePage(pattern, pattern.parts(compile), subject, log));
    } else {
        printLog(log);
    }
    return found != nullptr ? exitPositive : exitNegative;
}

}  // namespace tool
