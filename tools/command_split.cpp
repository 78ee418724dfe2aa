// `cvregexp split`: the parts of whole files that lie between the matches of a pattern.
//
// Unlike `match`, this prints nothing before a text is searched to its end; the parts are views into the text
// and cost no copy.
#include "tools/command.h"
#include "tools/compiled_pattern.h"
#include "tools/convert_text.h"
#include "tools/exit_status.h"
#include "tools/input.h"
#include "tools/interrupt.h"
#include "tools/pattern_options.h"
#include "tools/warning_report.h"

#include <iostream>
#include <string_view>
#include <system_error>
#include <vector>

namespace po = boost::program_options;

namespace tool {
namespace {

po::options_description splitOptions(Corvane::regexp::CompileOptions& compile) {
    po::options_description options("Output");
    options.add_options()("null,0", "end each part with a NUL instead of a line feed")("help,h",
                                                                                       "print this help");
    return withPatternOptions(options, compile);
}

// True when there is more than one part. A line feed that ends the whole text belongs to no part.
bool splitText(const RE_Tree& tree, std::u16string_view text, char terminator) {
    // Else a text file, which ends with a line feed, would have an empty part at its end under a pattern like
    // \n.
    if (text.ends_with(u'\n')) text.remove_suffix(1);
    // At least one part, if only the whole text.
    std::vector<std::u16string_view> parts = tree.split(text);
    const bool interrupted = interruptPending();
    if (interrupted) parts.pop_back();  // the rest of the text, which was not searched
    for (const std::u16string_view part : parts) std::cout << toUtf8(part) << terminator;
    if (interrupted) throw Interrupted();
    return parts.size() > 1;
}

}  // namespace

int runSplit(const Arguments& words) {
    Corvane::regexp::CompileOptions compile;
    ParsedArguments arguments =
        parseArguments(words, "split [OPTION...] PATTERN [FILE...]", splitOptions(compile));
    CompiledPattern pattern(takePattern(arguments), compile);
    pattern.prepareForSearches();
    if (arguments.positionals.empty()) arguments.positionals = {"-"};
    // One text after the other; a file that cannot be read does not keep the others from being split.
    catchInterrupts();
    printWarnings(pattern.text(), pattern.warnings());
    bool found = false;
    bool unreadable = false;
    for (const std::string& fileName : arguments.positionals) {
        try {
            const Input input(fileName);
            found |= splitText(pattern.tree(), input.text(), arguments.has("null") ? '\0' : '\n');
        } catch (const std::system_error& failure) {
            std::cout.flush();
            std::cerr << "cvregexp: " << failure.what() << '\n';
            unreadable = true;
        }
    }
    // An incomplete answer is trouble, whatever was found.
    if (unreadable) return exitTrouble;
    return found ? exitPositive : exitNegative;
}

}  // namespace tool
