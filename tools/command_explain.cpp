// `cvregexp explain`: what a pattern matches, in English, and what its searches cost.
//
// The description is of the pattern as written (regexp/inspect/outline.h). Start, possessive loops and growth
// are read off the compiled graph, so they depend on the compile options.
#include "tools/command.h"
#include "tools/compiled_pattern.h"
#include "tools/convert_text.h"
#include "tools/exit_status.h"
#include "tools/pattern_options.h"
#include "tools/pattern_quote.h"
#include "tools/usage_error.h"
#include "tools/warning_report.h"

#include "regexp/graph/graph_facts.h"
#include "regexp/inspect/outline.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/label_text.h"
#include "regexp/nodes/seeker.h"
#include "regexp/nodes/string.h"

#include <algorithm>
#include <iostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace po = boost::program_options;

namespace tool {
namespace {

// Columns of the parts, and units of a label or a part within a sentence; a set of a thousand words would fill the screen.
constexpr std::size_t widestPart = 32;
constexpr std::size_t longestQuote = 60;

// Each line of the description beside the part of the pattern that it is about.
void printOutline(std::u16string_view pattern, const RE_Outline& outline) {
    constexpr std::size_t deepest = 40;  // levels; deeper ones are indented no further
    std::vector<std::string> parts;
    std::size_t widest = 0;
    for (const RE_Outline::Line& line : outline.lines) {
        const RE_Part_Of_Pattern part{line.start, line.length};
        parts.push_back(line.length == 0 ? "" : quotePart(pattern, part, widestPart));
        widest = std::max(widest, terminalWidth(toUtf16(parts.back())));
    }
    for (std::size_t i = 0; i != parts.size(); ++i) {
        const RE_Outline::Line& line = outline.lines[i];
        std::cout << padded(parts[i], widest) << "  " << std::string(2 * std::min(line.depth, deepest), ' ')
                  << line.words << '\n';
    }
}

// Nodes of the compiled pattern in words: by the part of the text that they were made for, or else by what they do.
class Naming {
public:
    Naming(std::u16string_view pattern, RE_Pattern_Parts parts)
        : pattern_(pattern), parts_(std::move(parts)) {}

    std::string operator()(const RE_Node* node) const {
        const std::string part = quotePart(pattern_, parts_.of(node->nodeId), longestQuote);
        return part.empty() ? shortened(node->label(), longestQuote) : "`" + part + "`";
    }

private:
    std::u16string_view pattern_;
    RE_Pattern_Parts parts_;
};

// The length of a match in code units, as far as the pattern alone says.
std::string lengthText(const RE_Outline& outline) {
    const std::string least = std::to_string(outline.least);
    const std::string units = outline.least == 1 ? " unit" : " units";
    if (outline.least == outline.most) return least + units;
    return least + (outline.most == RE_Outline::unbounded ? units + " or more"
                                                          : " to " + std::to_string(outline.most) + " units");
}

// How a search finds start positions: by a start finder, by the root itself, or one position after the other.
std::string startText(const RE_Tree& tree, const Naming& name) {
    const RE_Node* const root = tree.getRoot();
    const RE_Start_Finder finder = tree.getFacts().startFinder;
    if (finder != RE_Start_Finder::none) return std::string(nameOf(finder)) + ": " + name(root);
    return root->canSeek(false) ? name(root) : "every position is tried";
}

// Every place at which the engine does not backtrack, and why that is so: because the pattern asks for it, or
// because backtracking there could not help (`couldNotHelp`). Copies of a loop's body have the same text, which is said once.
void printPossessiveLoops(const RE_Tree& tree, const Naming& name) {
    std::set<std::string> said;
    const auto say = [&](const RE_Node* node, const char* reason) {
        const std::string line = "No backtracking into " + name(node) + ": " + reason + "\n";
        if (said.insert(line).second) std::cout << line;
    };
    for (const RE_Node* node : tree.getFacts().nodes) {
        if (nodeAs<RE_Atomic>(node) != nullptr) say(node, "it is atomic or a possessive loop");
        const auto* const loop = nodeAs<RE_Consume>(node);
        if (loop == nullptr || !loop->possessive) continue;
        say(loop, loop->couldNotHelp ? "what follows cannot begin with such a unit"
                                     : "it is possessive or all of an atomic group");
    }
}

// The judgement in words. It is about plain backtracking; what the engine saves besides is not judged.
std::string growthText(const RE_Growth& growth, const Naming& name) {
    using Kind = RE_Growth::Kind;
    if (growth.kind == Kind::linear) return "linear";
    if (growth.kind == Kind::unknown) {
        return "not known: the pattern has too many states, an unbounded look-behind or parts that a text "
               "decides";
    }
    const std::string loop =
        growth.loop == nullptr ? "the search for a start" : "the loop at " + name(growth.loop);
    const std::string rival = growth.loop == growth.rival ? "itself" : "the loop at " + name(growth.rival);
    return std::string(growth.kind == Kind::exponential ? "exponential" : "polynomial") +
           " without the memory of failed states: " + loop + " is ambiguous with " + rival;
}

// The judgement and a text to try it with. Control characters are escaped.
void printGrowth(const RE_Growth& growth, const Naming& name) {
    std::cout << "Growth: " << growthText(growth, name) << '\n';
    // Linear or unknown: there is no witness.
    if (growth.loop == nullptr && growth.rival == nullptr) return;
    const auto quoted = [](const std::u16string& text) { return "'" + toPrintableUtf8(text) + "'"; };
    std::cout << "Witness:";
    if (!growth.prefix.empty()) std::cout << ' ' << quoted(growth.prefix) << ", then";
    std::cout << ' ' << quoted(growth.pump) << " many times";
    if (!growth.suffix.empty()) std::cout << ", then " << quoted(growth.suffix);
    std::cout << '\n';
}

}  // namespace

int runExplain(const Arguments& words) {
    Corvane::regexp::CompileOptions compile;
    po::options_description known;
    // No options of its own but this one.
    known.add_options()("help,h", "print this help");
    known.add(patternOptions()).add(compileOptions(compile));
    ParsedArguments arguments = parseArguments(words, "explain [OPTION...] PATTERN", known);
    const PatternRequest request = takePattern(arguments);
    if (!arguments.positionals.empty()) throw UsageError("explain takes one pattern and nothing else");
    const CompiledPattern pattern(request, compile);
    printWarnings(pattern.text(), pattern.warnings());
    printHints(pattern.text(), hintsOfPattern(pattern.text()));

    // A context of its own: the outline reads the pattern again and would raise every warning a second time.
    const auto context = makeContext(compile, pattern.scripts(), true);
    const RE_Outline outline =
        outlinePattern(request.text.data(), request.text.size(), request.flags, context.get());
    // First what the author wrote, then what the engine makes of it.
    const Naming name(pattern.text(), pattern.parts(compile));
    printOutline(pattern.text(), outline);
    std::cout << "Length: " << lengthText(outline) << "\nStart: " << startText(pattern.tree(), name) << '\n';
    printPossessiveLoops(pattern.tree(), name);
    printGrowth(judgeGrowth(pattern.tree()), name);
    return exitPositive;
}

}  // namespace tool
