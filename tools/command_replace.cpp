// `cvregexp replace`: whole files with their matches replaced, on standard output or in place.
#include "tools/command.h"
#include "tools/compiled_pattern.h"
#include "tools/compiled_replacement.h"
#include "tools/exit_status.h"
#include "tools/file_rewrite.h"
#include "tools/input.h"
#include "tools/interrupt.h"
#include "tools/pattern_options.h"
#include "tools/usage_error.h"
#include "tools/utf8.h"
#include "tools/warning_report.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <system_error>

namespace po = boost::program_options;

namespace tool {
namespace {

po::options_description knownOptions(Corvane::regexp::CompileOptions& compile) {
    po::options_description options("Replacement");
    auto add = options.add_options();
    add("adjust-case", "give each replacement the case of the text it replaces");
    add("which", po::value<std::size_t>()->default_value(0, "all")->value_name("N"),
        "replace only the N-th match of each file");
    add("in-place", "change the files instead of printing them");
    add("help", "print this help");
    po::options_description known;
    known.add(options).add(patternOptions()).add(compileOptions(compile));
    return known;
}

struct ReplaceSettings {
    bool adjustCase;
    bool inPlace;
    std::size_t which;
    Arguments fileNames;
};

ReplaceSettings readSettings(const ParsedArguments& arguments) {
    ReplaceSettings settings{arguments.has("adjust-case"), arguments.has("in-place"),
                             arguments.options["which"].as<std::size_t>(), arguments.positionals};
    if (settings.fileNames.empty()) settings.fileNames = {"-"};
    if (settings.inPlace && std::ranges::find(settings.fileNames, "-") != settings.fileNames.end())
        throw UsageError("--in-place needs files, standard input is none");
    return settings;
}

std::u16string takeReplacement(ParsedArguments& arguments) {
    if (arguments.positionals.empty()) throw UsageError("a replacement is missing");
    std::u16string text = toUtf16(arguments.positionals.front());
    arguments.positionals.erase(arguments.positionals.begin());
    return text;
}

class ReplaceRun {
public:
    ReplaceRun(const CompiledPattern& pattern, const CompiledReplacement& replacement,
               const ReplaceSettings& settings)
        : tree_(pattern.tree()), replace_(replacement.replace()), settings_(settings) {}

    int runAll() {
        for (const std::string& fileName : settings_.fileNames) runFile(fileName);
        if (trouble_) return exitTrouble;
        return found_ ? exitPositive : exitNegative;
    }

private:
    // A file that cannot be read or written does not keep the others from being changed.
    void runFile(const std::string& fileName) {
        try {
            if (settings_.inPlace) {
                changeFile(fileName);
            } else {
                std::cout << toUtf8(replaced(readInput(fileName).text.view()));
            }
        } catch (const std::system_error& failure) {
            report(failure.what());
        }
    }

    // Bytes that are no UTF-8 would not survive the conversion there and back.
    void changeFile(const std::string& fileName) {
        const std::string bytes = readAllBytes(fileName);
        const std::string_view mark = bytes.starts_with(byteOrderMark) ? byteOrderMark : std::string_view();
        const std::string_view content = std::string_view(bytes).substr(mark.size());
        const Utf16Text text(content);
        if (toUtf8(text.view()) != content) {
            report(fileName + ": not UTF-8, left as it is");
            return;
        }
        std::string changed(mark);
        appendUtf8(changed, replaced(text.view()));
        if (changed != bytes) rewriteFile(fileName, changed);
    }

    // What an interrupt leaves half done goes nowhere.
    std::u16string replaced(std::u16string_view subject) {
        const std::unique_ptr<RE_Results> match(tree_.match(subject.data(), subject.size(), 0));
        found_ = found_ || match != nullptr;
        std::u16string result = replace_.replace(subject, tree_, settings_.adjustCase, settings_.which);
        if (interruptPending()) throw Interrupted();
        return result;
    }

    void report(const std::string& message) {
        std::cout.flush();
        std::cerr << "cvregexp: " << message << '\n';
        trouble_ = true;
    }

    const RE_Tree& tree_;
    const RE_Replace& replace_;
    const ReplaceSettings& settings_;
    bool found_ = false;
    bool trouble_ = false;
};

}  // namespace

int runReplace(const Arguments& words) {
    Corvane::regexp::CompileOptions compile;
    const po::options_description known = knownOptions(compile);
    ParsedArguments arguments = parseArguments(words, known);
    if (arguments.has("help")) {
        printCommandHelp("replace [OPTION...] PATTERN REPLACEMENT [FILE...]", known);
        return exitPositive;
    }
    PatternRequest request = takePattern(arguments);
    std::u16string replacementText = takeReplacement(arguments);
    const ReplaceSettings settings = readSettings(arguments);
    catchInterrupts();
    const CompiledPattern pattern(std::move(request), compile);
    printWarnings(pattern.text(), pattern.warnings());
    const CompiledReplacement replacement(std::move(replacementText), compile, pattern.scripts());
    printWarnings(replacement.text(), replacement.warnings());
    const int status = ReplaceRun(pattern, replacement, settings).runAll();
    if (pattern.scripts()) pattern.scripts()->finish();
    return status;
}

}  // namespace tool
