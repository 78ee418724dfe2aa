// The options of `cvregexp match` that do not concern the pattern. Letters are those of the usual search tools.
#include "tools/match_options.h"

#include "tools/usage_error.h"
#include "tools/walk/walk_options.h"

#include <algorithm>

namespace po = boost::program_options;

namespace tool {
namespace {

// Of forms of output that were asked for together, the one that says least counts, as usual; those that say different
// things about matches exclude each other.
ReportForm chosenForm(const ParsedArguments& arguments) {
    struct FormOption {
        const char* name;
        ReportForm form;
    };
    static constexpr FormOption brief[] = {
        {"quiet", ReportForm::silent},
        {"files-with-matches", ReportForm::names},
        {"files-without-match", ReportForm::others},
        {"count", ReportForm::count},
        {"count-matches", ReportForm::matches},
    };
    static constexpr FormOption detailed[] = {
        {"json", ReportForm::json}, {"tokens", ReportForm::tokens}, {"only-matching", ReportForm::parts}};
    const FormOption* chosen = nullptr;
    for (const FormOption& form : detailed) {
        if (!arguments.has(form.name)) continue;
        if (chosen != nullptr)
            throw UsageError(std::string("--") + chosen->name + " and --" + form.name +
                             " exclude each other");
        chosen = &form;
    }
    for (const FormOption& form : brief)
        if (arguments.has(form.name)) return form.form;
    return chosen == nullptr ? ReportForm::lines : chosen->form;
}

// As usual for search tools: names are printed as soon as there may be more than one file.
bool fileNamesWanted(const ParsedArguments& arguments, const Arguments& files) {
    if (arguments.has("with-filename") && arguments.has("no-filename"))
        throw UsageError("--with-filename and --no-filename exclude each other");
    if (arguments.has("with-filename") || arguments.has("no-filename")) return arguments.has("with-filename");
    return files.size() > 1 || std::ranges::any_of(files, isDirectory);
}

std::size_t numberOr(const ParsedArguments& arguments, const char* option, std::size_t otherwise) {
    return arguments.has(option) ? arguments.number(option) : otherwise;
}

ReportStyle readStyle(const ParsedArguments& arguments, const Arguments& files, std::size_t patternCount) {
    ReportStyle style;
    style.form = chosenForm(arguments);
    // Not what is a file name, but whether it is printed.
    style.fileNames = fileNamesWanted(arguments, files);
    style.lineNumbers = arguments.has("line-number") || arguments.has("column");
    style.columns = arguments.has("column");
    style.byteOffsets = arguments.has("byte-offset");
    style.nulAfterName = arguments.has("null");
    style.color = colorWanted(arguments.options["color"].as<std::string>());
    style.hyperlinks = hyperlinksWanted(arguments.options["hyperlink"].as<std::string>());
    style.passthru = arguments.has("passthru");
    style.invert = arguments.has("invert-match");
    style.attributes = patternCount > 1;
    style.toTerminal = standardOutputIsTerminal();
    style.terminator = arguments.has("null-data") ? '\0' : '\n';
    const std::size_t around = numberOr(arguments, "context", 0);
    style.before = numberOr(arguments, "before-context", around);
    style.after = numberOr(arguments, "after-context", around);
    style.maxCount = numberOr(arguments, "max-count", ReportStyle::unlimited);
    return style;
}

FileOrder chosenOrder(const ParsedArguments& arguments) {
    const auto order = arguments.options["sort"].as<std::string>();
    if (order == "path") return FileOrder::path;
    if (order == "modified") return FileOrder::modified;
    throw UsageError("--sort is path or modified, not " + order);
}

}  // namespace

po::options_description matchOptions() {
    po::options_description options("Lines");
    auto add = options.add_options();
    add("invert-match,v", flag(), "select the lines without a match");
    add("word-regexp,w", flag(), "match whole words only");
    add("line-regexp,x", flag(), "match whole lines only");
    add("multiline,U", flag(), "search each file as one text, so that matches may span lines");
    add("null-data,z", flag(), "lines end with a NUL, not with a line feed");
    add("max-count,m", po::value<std::string>()->value_name("N"), "stop after N selected lines of each file");
    add("encoding", po::value<std::string>()->default_value("auto")->value_name("NAME"),
        "how files are encoded; auto: as a byte order mark says, else UTF-8");

    po::options_description output("Output");
    auto addOutput = output.add_options();
    addOutput("only-matching,o", flag(), "print each match alone, not the lines that hold it");
    addOutput("tokens", flag(), "print each match and its tokens");
    addOutput("json", flag(), "print one JSON object for each match");
    addOutput("count,c", flag(), "print only the number of selected lines of each file");
    addOutput("count-matches", flag(), "print only the number of matches in each file");
    addOutput("files-with-matches,l", flag(), "print only the names of the files with a selected line");
    addOutput("files-without-match,L", flag(), "print only the names of the files without one");
    addOutput("quiet,q", flag(), "print nothing; the exit status tells");
    addOutput("after-context,A", po::value<std::string>()->value_name("N"), "also print the N lines after");
    addOutput("before-context,B", po::value<std::string>()->value_name("N"), "also print the N lines before");
    addOutput("context,C", po::value<std::string>()->value_name("N"), "both");
    addOutput("passthru", flag(), "print all lines, the selected ones marked");
    addOutput("line-number,n", flag(), "print the number of each line");
    addOutput("column", flag(), "print the line and the byte of the line at which its first match begins");
    addOutput("byte-offset,b", flag(), "print the byte of the file at which a line, or a match, begins");
    addOutput("with-filename,H", flag(), "print the name of each file");
    addOutput("no-filename,h", flag(), "never print file names");
    addOutput("null,0", flag(), "write a NUL after file names");
    addOutput("color", po::value<std::string>()->default_value("auto")->value_name("WHEN"),
              "mark matches, names and numbers: auto, always or never");
    addOutput("hyperlink", po::value<std::string>()->default_value("auto")->value_name("WHEN"),
              "names are links: auto, always or never");
    addOutput("stats", flag(), "print on standard error what was searched and found");
    addOutput("no-messages,s", flag(), "say nothing about files that cannot be read");
    addOutput("help", flag(), "print this help");

    po::options_description files("Files");
    addWalkOptions(files);
    auto addFiles = files.add_options();
    addFiles("text,a", flag(), "search binary files like any others");
    addFiles("files", flag(), "print the names of the files that would be searched; there is no pattern");
    addFiles("sort", po::value<std::string>()->default_value("path")->value_name("ORDER"),
             "path, or modified: the oldest file first");
    addFiles("threads,j", po::value<std::string>()->value_name("N"), "search with N threads");
    options.add(output).add(files);
    return options;
}

MatchSettings readMatchSettings(const ParsedArguments& arguments, std::size_t patternCount) {
    MatchSettings settings;
    RunSettings& run = settings.run;
    run.files = namedFiles(arguments, arguments.has("recursive") || arguments.has("files"));
    run.style = readStyle(arguments, run.files, patternCount);
    run.encoding = EncodingChoice(arguments.options["encoding"].as<std::string>());
    run.walk = readWalkSettings(arguments);
    run.order = chosenOrder(arguments);
    run.threads = numberOr(arguments, "threads", 0);
    run.searchesBinary = arguments.has("text");
    run.findsBinary = wantsBinaryFiles(arguments);
    run.quietAboutFiles = arguments.has("no-messages");
    run.listsOnly = arguments.has("files");
    run.stats = arguments.has("stats");

    settings.modes.wholeWords = arguments.has("word-regexp");
    settings.modes.wholeLines = arguments.has("line-regexp");
    settings.modes.multiline = arguments.has("multiline");
    settings.modes.terminator = run.style.terminator;
    settings.modes.attributes = run.style.form == ReportForm::json || run.style.form == ReportForm::tokens;
    return settings;
}

}  // namespace tool
