// `cvregexp replace`: whole files with their matches replaced, on standard output or in place, or as a patch.
#include "tools/command.h"
#include "tools/compiled_pattern.h"
#include "tools/compiled_replacement.h"
#include "tools/convert_text.h"
#include "tools/interrupt.h"
#include "tools/pattern_options.h"
#include "tools/replace/replace_run.h"
#include "tools/usage_error.h"
#include "tools/walk/walk_options.h"
#include "tools/warning_report.h"

#include <algorithm>
#include <string>

namespace po = boost::program_options;

namespace tool {
namespace {

// --which counts from 1, and 0 is all of them, as in the library.
po::options_description replaceOptions(Corvane::regexp::CompileOptions& compile) {
    po::options_description options("Replacement");
    auto add = options.add_options();
    add("adjust-case", flag(), "give each replacement the case of the text it replaces");
    add("which", po::value<std::string>()->default_value("0", "all")->value_name("N"),
        "replace only the N-th match of each file");
    add("in-place", flag(), "change the files instead of printing them");
    add("dry-run", flag(), "print as a patch what --in-place would change");
    add("save-patch", po::value<std::string>()->value_name("FILE"),
        "with --in-place, keep in FILE what was changed, for patch -R");
    add("encoding", po::value<std::string>()->default_value("auto")->value_name("NAME"),
        "how files are encoded; auto: as a byte order mark says, else UTF-8");
    add("help,h", "print this help");

    po::options_description files("Files");
    addWalkOptions(files);
    files.add_options()("text,a", flag(), "of directories, also binary files");
    options.add(files);
    return withPatternOptions(options, compile);
}

// In directories nothing is printed: the texts of many files after another are of no use.
ReplaceForm chosenForm(const ParsedArguments& arguments) {
    if (arguments.has("dry-run")) return ReplaceForm::show;
    if (arguments.has("in-place")) return ReplaceForm::change;
    if (arguments.has("recursive")) throw UsageError("--recursive needs --in-place or --dry-run");
    if (arguments.has("save-patch")) throw UsageError("--save-patch needs --in-place");
    return ReplaceForm::print;
}

// The pattern and the replacement must have been taken from the positional words; the rest are files. What is wrong is
// refused before anything is read or changed.
ReplaceSettings readSettings(const ParsedArguments& arguments) {
    ReplaceSettings settings;
    settings.form = chosenForm(arguments);
    settings.entersDirectories = arguments.has("recursive");
    settings.findsBinary = arguments.has("text") || wantsBinaryFiles(arguments);
    if (arguments.has("save-patch") && settings.form == ReplaceForm::change)
        settings.patchName = arguments.options["save-patch"].as<std::string>();
    settings.encoding = EncodingChoice(arguments.options["encoding"].as<std::string>());
    settings.walk = readWalkSettings(arguments);
    settings.files = namedFiles(arguments, settings.entersDirectories);
    if (settings.form != ReplaceForm::print && std::ranges::find(settings.files, "-") != settings.files.end())
        throw UsageError(std::string(settings.form == ReplaceForm::show ? "--dry-run" : "--in-place") +
                         " needs files, standard input is none");
    return settings;
}

// The first of the positional words that are left after the pattern.
std::u16string takeReplacement(ParsedArguments& arguments) {
    if (arguments.positionals.empty()) throw UsageError("a replacement is missing");
    std::u16string text = toUtf16(arguments.positionals.front());
    arguments.positionals.erase(arguments.positionals.begin());
    return text;
}

}  // namespace

int runReplace(const Arguments& words) {
    Corvane::regexp::CompileOptions compile;
    ParsedArguments arguments =
        parseArguments(words, "replace [OPTION...] PATTERN REPLACEMENT [FILE...]", replaceOptions(compile));
    PatternRequest request = takePattern(arguments);
    std::u16string replacementText = takeReplacement(arguments);
    const ReplaceSettings settings = readSettings(arguments);
    arguments.number("which");  // a wrong number is told before the warnings of the pattern
    catchInterrupts();
    CompiledPattern pattern(std::move(request), compile);
    pattern.prepareForSearches();
    printWarnings(pattern.text(), pattern.warnings(), "pattern");
    printHints(pattern.text(), hintsOfPattern(pattern.text()));
    // After the pattern: both share the interpreter that runs their expressions.
    const CompiledReplacement replacement(std::move(replacementText), compile, pattern.scripts());
    printWarnings(replacement.text(), replacement.warnings(), "replacement");
    printHints(replacement.text(), hintsOfReplacement(replacement.text()));
    const Replacer replacer(pattern.tree(), replacement.replace(), arguments.has("adjust-case"),
                            arguments.number("which"));
    const int status = replaceInFiles(replacer, settings);
    if (pattern.scripts()) pattern.scripts()->finish();
    return status;
}

}  // namespace tool
