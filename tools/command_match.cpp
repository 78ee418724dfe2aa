// `cvregexp match`: every match of a pattern in whole files, which the pattern sees as one text, not as
// lines.
//
// Matches are printed as they are found. An interrupt ends the search, and what was found before it stays
// printed.
#include "tools/command.h"
#include "tools/compiled_pattern.h"
#include "tools/exit_status.h"
#include "tools/interrupt.h"
#include "tools/match_options.h"
#include "tools/pattern_options.h"
#include "tools/progress.h"
#include "tools/warning_report.h"

#include <unistd.h>

#include <iostream>
#include <system_error>

namespace tool {
namespace {

// One run over all files, with the state that outlives a file: whether anything was found or unreadable.
class MatchRun {
public:
    MatchRun(const CompiledPattern& pattern, const MatchSettings& settings)
        : pattern_(pattern), settings_(settings), reporter_(makeReporter(settings.style, std::cout)) {}

    // A file that cannot be read outweighs a match: a script must not take an incomplete answer for a
    // complete one. The exception is --quiet, whose answer is complete with the first match.
    int searchAll() {
        for (const std::string& fileName : settings_.fileNames) {
            searchFile(fileName);
            if (interruptPending()) throw Interrupted();
            if (found_ && settings_.style.form == ReportForm::silent) return exitPositive;
        }
        if (unreadable_) return exitTrouble;
        return found_ ? exitPositive : exitNegative;
    }

private:
    // A file that cannot be read does not keep the others from being searched. The message comes after the
    // output so far, also when both streams are one terminal.
    void searchFile(const std::string& fileName) {
        try {
            searchText(readInput(fileName));
        } catch (const std::system_error& failure) {
            std::cout.flush();
            std::cerr << "cvregexp: " << failure.what() << '\n';
            unreadable_ = true;
        }
    }

    // One text, whole. The reporter decides by its answers whether further matches are wanted.
    void searchText(const Input& input) {
        RE_Match_Range matches = pattern_.tree().find_all(input.text.view());
        Progress progress(input);
        reporter_->beginText(input);
        // Short searches may end before they poll the flag, so it is consulted between them too.
        std::size_t left = settings_.maxCount;
        for (auto match = matches.begin(); match != matches.end() && left != 0; ++match) {
            found_ = true;
            progress.at(match->nextIndex());
            if (!report(*match, progress) || --left == 0 || interruptPending()) break;
        }
        progress.hide();
        reporter_->endText();
    }

    // Forms that print as they go share the terminal with the progress line, so it makes room for them.
    bool report(const RE_Results& match, Progress& progress) {
        if (!printsToTerminal_) return reporter_->match(match);
        progress.hide();
        const bool more = reporter_->match(match);
        std::cout.flush();
        return more;
    }

    const CompiledPattern& pattern_;
    const MatchSettings& settings_;
    std::unique_ptr<Reporter> reporter_;
    // The progress line is on standard error, so only a terminal that shows both gets them mixed up.
    const bool printsToTerminal_ = ::isatty(STDOUT_FILENO) != 0;
    bool found_ = false;
    bool unreadable_ = false;
};

}  // namespace

int runMatch(const Arguments& words) {
    Corvane::regexp::CompileOptions compile;
    ParsedArguments arguments = parseArguments(words, "match [OPTION...] PATTERN [FILE...]",
                                               withPatternOptions(matchOptions(), compile));
    // First the pattern, then the files: takePattern removes the pattern from the positional words.
    PatternRequest request = takePattern(arguments);
    const MatchSettings settings = readMatchSettings(arguments);
    // Before compiling, so that no signal from here on leaves a half-written answer.
    catchInterrupts();
    CompiledPattern pattern(std::move(request), compile);
    pattern.prepareForSearches();
    printWarnings(pattern.text(), pattern.warnings());
    const int status = MatchRun(pattern, settings).searchAll();
    if (pattern.scripts()) pattern.scripts()->finish();
    return status;
}

}  // namespace tool
