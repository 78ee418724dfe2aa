// `cvregexp graph`: the node graph of a pattern, as text of the graph language or drawn by Graphviz.
#include "tools/command.h"
#include "tools/compiled_pattern.h"
#include "tools/exit_status.h"
#include "tools/graphviz.h"
#include "tools/pattern_options.h"
#include "tools/usage_error.h"
#include "tools/warning_report.h"

#include <iostream>

namespace po = boost::program_options;

namespace tool {
namespace {

// The command's own options; those of patterns and compiling come along. The default format is the one that
// needs no other program.
po::options_description graphOptions(Corvane::regexp::CompileOptions& compile) {
    po::options_description options("Output");
    auto add = options.add_options();
    add("format", po::value<std::string>()->default_value("dot")->value_name("dot|svg|png"),
        "what to write; Graphviz draws the pictures");
    add("stage", po::value<std::string>()->value_name("STAGE"),
        "the graph after a stage of compilation: parsed, null-nodes, linear or dot-star");
    add("help,h", "print this help");
    return withPatternOptions(options, compile);
}

// The names are those of the passes, as the compile options that switch them have them.
RE_Stage stageNamed(std::string_view name) {
    static constexpr std::pair<std::string_view, RE_Stage> stages[] = {{"parsed", RE_Stage::parsed},
                                                                       {"null-nodes", RE_Stage::null_nodes},
                                                                       {"linear", RE_Stage::linear},
                                                                       {"dot-star", RE_Stage::dot_star}};
    for (const auto& [known, stage] : stages)
        if (known == name) return stage;
    // The names of stages are few and fixed, so the message lists them.
    throw UsageError("no stage is named \"" + std::string(name) +
                     "\"; there are parsed, null-nodes, linear and dot-star");
}

}  // namespace

int runGraph(const Arguments& words) {
    Corvane::regexp::CompileOptions compile;
    ParsedArguments arguments = parseArguments(words, "graph [OPTION...] PATTERN", graphOptions(compile));
    const std::string format = arguments.options["format"].as<std::string>();
    const PatternRequest request = takePattern(arguments);
    if (!arguments.positionals.empty()) throw UsageError("graph takes one pattern and nothing else");
    // Compiled as a whole even for an earlier stage: its warnings are to be seen in either case.
    const CompiledPattern pattern(request, compile);
    printWarnings(pattern.text(), pattern.warnings());

    // An earlier stage is not kept in a tree; it is compiled again up to there.
    std::string text = pattern.tree().graph();
    if (arguments.has("stage")) {
        const auto context = makeContext(compile, pattern.scripts(), true);
        text = RE_Tree::graphAfter(stageNamed(arguments.options["stage"].as<std::string>()),
                                   request.text.data(), request.text.size(), request.flags, context.get());
    }
    // A picture goes to standard output too: the caller knows best where it belongs.
    std::cout << drawGraph(text, format);
    return exitPositive;
}

}  // namespace tool
