// The options of `cvregexp match` that do not concern the pattern. What contradicts itself is an error, never
// a matter of which option comes last.
#include "tools/match_options.h"

#include "tools/highlight.h"
#include "tools/usage_error.h"

#include <limits>

namespace po = boost::program_options;

namespace tool {
namespace {

// Each of these options replaces the default output by another form, so at most one may be given.
struct FormOption {
    const char* name;
    ReportForm form;
};

ReportForm chosenForm(const ParsedArguments& arguments) {
    static constexpr FormOption forms[] = {
        {"quiet", ReportForm::silent},  {"files-with-matches", ReportForm::names},
        {"count", ReportForm::count},   {"json", ReportForm::json},
        {"tokens", ReportForm::tokens}, {"only-matching", ReportForm::parts},
    };
    const FormOption* chosen = nullptr;
    for (const FormOption& form : forms) {
        if (!arguments.has(form.name)) continue;
        if (chosen != nullptr) {
            throw UsageError(std::string("--") + chosen->name + " and --" + form.name +
                             " exclude each other");
        }
        chosen = &form;
    }
    return chosen == nullptr ? ReportForm::lines : chosen->form;
}

// As usual for search tools: names are printed as soon as there is more than one file.
bool fileNamesWanted(const ParsedArguments& arguments, std::size_t fileCount) {
    if (arguments.has("with-filename") && arguments.has("no-filename"))
        throw UsageError("--with-filename and --no-filename exclude each other");
    return arguments.has("with-filename") || (fileCount > 1 && !arguments.has("no-filename"));
}

}  // namespace

// Single letters are those of the usual search tools where an option means the same.
po::options_description matchOptions() {
    po::options_description options("Output");
    auto add = options.add_options();
    add("only-matching,o", "print each match alone, not the lines that hold it");
    add("tokens", "print each match and its tokens");
    add("json", "print one JSON object for each match");
    add("count,c", "print only the number of matches in each file");
    add("files-with-matches,l", "print only the names of the files that hold a match");
    add("quiet,q", "print nothing; the exit status tells");
    add("line-number,n", "print the number of each line");
    add("with-filename,H", "print the name of each file");
    add("no-filename,h", "never print file names");
    add("null,0", "write a NUL after file names");
    add("max-count", po::value<std::string>()->value_name("N"), "stop after N matches in each file");
    add("color", po::value<std::string>()->default_value("auto")->value_name("WHEN"),
        "mark the matches: auto, always or never");
    add("help", "print this help");
    return options;
}

MatchSettings readMatchSettings(const ParsedArguments& arguments) {
    MatchSettings settings;
    settings.fileNames = arguments.positionals;
    if (settings.fileNames.empty()) settings.fileNames = {"-"};
    settings.style.form = chosenForm(arguments);
    // Not what is a file name, but whether it is printed.
    settings.style.fileNames = fileNamesWanted(arguments, settings.fileNames.size());
    settings.style.lineNumbers = arguments.has("line-number");
    settings.style.nulAfterName = arguments.has("null");
    settings.style.color = colorWanted(arguments.options["color"].as<std::string>());
    // Without the option, more than any text has.
    settings.maxCount =
        arguments.has("max-count") ? arguments.number("max-count") : std::numeric_limits<std::size_t>::max();
    return settings;
}

}  // namespace tool
