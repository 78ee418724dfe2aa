// `cvregexp profile`: finds every match in a file and shows what each node of the pattern did for it.
//
// A profile is of the graph as it is searched without programs and machine code; the counts say where the
// work is, not how long it takes.
#include "regexp/nodes/graph_export.h"
#include "tools/command.h"
#include "tools/compiled_pattern.h"
#include "tools/exit_status.h"
#include "tools/graphviz.h"
#include "tools/input.h"
#include "tools/interrupt.h"
#include "tools/output_file.h"
#include "tools/pattern_options.h"
#include "tools/pattern_quote.h"
#include "tools/usage_error.h"
#include "tools/warning_report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace po = boost::program_options;

namespace tool {
namespace {

po::options_description profileOptions(Corvane::regexp::CompileOptions& compile) {
    po::options_description options("Output");
    auto add = options.add_options();
    add("graph", po::value<std::string>()->value_name("FILE"),
        "also draw the graph, the warmer a node the more visits it had; FILE ends in .dot, .svg or .png");
    add("help,h", "print this help");
    return withPatternOptions(options, compile);
}

// Steps of a search: what it ran, and what it went back to.
std::uint64_t workOf(const RE_Node_Counts& counts) {
    return counts.visits + counts.pops;
}

struct Row {
    std::string part;   // of the pattern
    std::string label;  // with the number, by which the graph and the trace have the node
    RE_Node_Counts counts;
};

constexpr std::size_t widestPartColumn = 24;

// The widths are those of printTable's heading. Labels come last, as they may be long.
void printRow(const Row& row, std::uint64_t allWork) {
    // Room for six numbers of twenty digits and the share.
    char numbers[160];
    const auto number = [](std::uint64_t value) { return static_cast<unsigned long long>(value); };
    const double share =
        allWork == 0 ? 0.0 : 100.0 * static_cast<double>(workOf(row.counts)) / static_cast<double>(allWork);
    std::snprintf(numbers, sizeof numbers, "%5.1f%% %12llu %12llu %12llu %12llu %12llu %12llu  ", share,
                  number(row.counts.visits), number(row.counts.successes), number(row.counts.failures),
                  number(row.counts.pushes), number(row.counts.pops), number(row.counts.refusals));
    std::cout << numbers << padded(row.part, widestPartColumn) << "  " << row.label << '\n';
}

// The nodes with the most work first, those with the same in the order of their numbers; the nodes of dynamic texts are one
// row. Then the sum.
void printTable(const RE_Profile& profile, std::u16string_view pattern, const RE_Pattern_Parts& parts) {
    char head[160];
    std::snprintf(head, sizeof head, "%6s %12s %12s %12s %12s %12s %12s  %-*s  %s\n", "work", "visits",
                  "matched", "failed", "pushed", "popped", "refused", static_cast<int>(widestPartColumn),
                  "part", "node");
    std::cout << head;
    std::vector<Row> rows;
    for (const RE_Node_Profile& node : profile.nodes) {
        rows.push_back({quotePart(pattern, parts.of(node.nodeId), widestPartColumn),
                        "n" + std::to_string(node.nodeId) + " " + node.label, node.counts});
    }
    if (profile.texts.visits != 0) rows.push_back({"", "the nodes of dynamic texts", profile.texts});
    std::ranges::stable_sort(rows, std::greater(), [](const Row& row) { return workOf(row.counts); });
    const std::uint64_t allWork = workOf(profile.total());
    for (const Row& row : rows) printRow(row, allWork);
    printRow({"", "the whole text", profile.total()}, allWork);
}

// From white for no visit to red for the most, by the logarithm: the visits of a loop and of what surrounds
// it differ by powers of ten. The number itself is shown beside the node.
std::string heat(std::uint64_t visits, std::uint64_t most) {
    const double part =
        most == 0 ? 0.0 : std::log1p(static_cast<double>(visits)) / std::log1p(static_cast<double>(most));
    char text[96];
    std::snprintf(text, sizeof text, "style=filled, fillcolor=\"%.3f %.3f 1.000\", xlabel=\"%llu\"",
                  0.15 * (1.0 - part), part, static_cast<unsigned long long>(visits));
    return text;
}

std::string heatGraph(const RE_Tree& tree, const RE_Profile& profile) {
    std::uint64_t most = 0;
    for (const RE_Node_Profile& node : profile.nodes) most = std::max(most, node.counts.visits);
    return tree.graph([&](std::uint64_t nodeId) {
        // Every node of the graph is in the profile, visited or not.
        const auto found = std::ranges::find(profile.nodes, nodeId, &RE_Node_Profile::nodeId);
        return heat(found->counts.visits, most);
    });
}

// The file's ending, which drawGraph accepts or refuses.
std::string formatOf(const std::string& fileName) {
    const std::size_t dot = fileName.rfind('.');
    return dot == std::string::npos ? "" : fileName.substr(dot + 1);
}

// Goes to the last match. A search that was broken off has counted too, but its profile would mislead.
bool searchAll(const RE_Tree& tree, std::u16string_view text) {
    bool found = false;
    for ([[maybe_unused]] const RE_Results& match : tree.find_all(text)) found = true;
    if (interruptPending()) throw Interrupted();
    return found;
}

}  // namespace

int runProfile(const Arguments& words) {
    Corvane::regexp::CompileOptions compile;
    // Counting is a compile option like any other; this command is the one that switches it on.
    Arguments all{"--Profile=true"};
    all.insert(all.end(), words.begin(), words.end());
    ParsedArguments arguments =
        parseArguments(all, "profile [OPTION...] PATTERN [FILE]", profileOptions(compile));
    const CompiledPattern pattern(takePattern(arguments), compile);
    if (arguments.positionals.size() > 1) throw UsageError("profile takes one pattern and one file");
    // One text: counts of several would add up to nothing that can be read.
    const Input input(arguments.positionals.empty() ? "-" : arguments.positionals.front());
    catchInterrupts();
    printWarnings(pattern.text(), pattern.warnings());

    const bool found = searchAll(pattern.tree(), input.text());
    const RE_Profile profile = pattern.tree().profile();
    printTable(profile, pattern.text(), pattern.parts(compile));
    // The table is printed in any case, so a picture that fails costs no result.
    if (arguments.has("graph")) {
        const std::string fileName = arguments.options["graph"].as<std::string>();
        writeFile(fileName, drawGraph(heatGraph(pattern.tree(), profile), formatOf(fileName)));
    }
    return found ? exitPositive : exitNegative;
}

}  // namespace tool
