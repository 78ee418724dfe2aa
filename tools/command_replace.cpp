// `cvregexp replace`: whole files with their matches replaced, on standard output or in place.
//
// In place, a file is either replaced as a whole or left as it was: see file_rewrite.h. On standard output
// every file is printed, also one without a match.
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
#include <string>
#include <string_view>
#include <system_error>

namespace po = boost::program_options;

namespace tool {
namespace {

// --which counts from 1, and 0 is all of them, as in the library.
po::options_description replaceOptions(Corvane::regexp::CompileOptions& compile) {
    po::options_description options("Replacement");
    auto add = options.add_options();
    add("adjust-case", "give each replacement the case of the text it replaces");
    add("which", po::value<std::string>()->default_value("0", "all")->value_name("N"),
        "replace only the N-th match of each file");
    add("in-place", "change the files instead of printing them");
    add("help", "print this help");
    return withPatternOptions(options, compile);
}

struct ReplaceSettings {
    bool adjustCase;
    bool inPlace;
    std::size_t which;
    Arguments fileNames;
};

// The pattern and the replacement must have been taken from the positional words; the rest are files.
ReplaceSettings readSettings(const ParsedArguments& arguments) {
    ReplaceSettings settings{arguments.has("adjust-case"), arguments.has("in-place"),
                             arguments.number("which"), arguments.positionals};
    if (settings.fileNames.empty()) settings.fileNames = {"-"};
    // Refused before anything is read or changed.
    if (settings.inPlace && std::ranges::find(settings.fileNames, "-") != settings.fileNames.end())
        throw UsageError("--in-place needs files, standard input is none");
    return settings;
}

// The first of the positional words that are left after the pattern.
std::u16string takeReplacement(ParsedArguments& arguments) {
    if (arguments.positionals.empty()) throw UsageError("a replacement is missing");
    std::u16string text = toUtf16(arguments.positionals.front());
    arguments.positionals.erase(arguments.positionals.begin());
    return text;
}

// A file as it was read: its bytes, and its text without the byte order mark. Both are kept, to tell
// afterwards whether anything changed and whether the conversion lost anything.
class FileText {
public:
    explicit FileText(const std::string& fileName)
        : bytes_(readAllBytes(fileName)),
          markSize_(bytes_.starts_with(byteOrderMark) ? byteOrderMark.size() : 0),
          text_(std::string_view(bytes_).substr(markSize_)) {}

    const std::string& bytes() const { return bytes_; }
    std::u16string_view text() const { return text_.view(); }
    // Whether writing the text back unchanged would give the same bytes.
    bool isUtf8() const { return isConversionOf(text(), std::string_view(bytes_).substr(markSize_)); }

    // As bytes, after the byte order mark if the file has one.
    std::string withMark(std::u16string_view changed) const {
        std::string result = bytes_.substr(0, markSize_);
        appendUtf8(result, changed);
        return result;
    }

private:
    std::string bytes_;
    std::size_t markSize_;
    Utf16Text text_;
};

// One run over all files.
class ReplaceRun {
public:
    ReplaceRun(const CompiledPattern& pattern, const CompiledReplacement& replacement,
               const ReplaceSettings& settings)
        : tree_(pattern.tree()), replace_(replacement.replace()), settings_(settings) {}

    // Every file is tried. The status tells trouble first, then whether anything was replaced in any of them.
    int runAll() {
        for (const std::string& fileName : settings_.fileNames) runFile(fileName);
        if (trouble_) return exitTrouble;
        return replaced_ ? exitPositive : exitNegative;
    }

private:
    // A file that cannot be read or written does not keep the others from being changed.
    void runFile(const std::string& fileName) {
        try {
            if (settings_.inPlace) {
                changeFile(fileName);
            } else {
                printFile(fileName);
            }
        } catch (const std::system_error& failure) {
            fail(failure.what());
        } catch (const FileRefused& failure) {
            fail(failure.what());
        }
    }

    // What has no UTF-8 form is printed as U+FFFD, and a message says so.
    void printFile(const std::string& fileName) {
        const FileText file(fileName);
        const std::u16string result = replacedText(file.text());
        std::cout << file.withMark(result);
        const std::string label = fileName == "-" ? "(standard input)" : fileName;
        if (!file.isUtf8()) say(label + ": not UTF-8, bytes that are not became U+FFFD");
        if (hasLoneSurrogate(result)) say(label + ": halves of surrogate pairs became U+FFFD");
    }

    // In a file nothing is lost: if it has no UTF-8 form, before or afterwards, it is left as it is. The
    // rewrite looks at the file before it is read, so that a change in between is noticed.
    void changeFile(const std::string& fileName) {
        const FileRewrite rewrite(fileName);
        const FileText file(fileName);
        if (!file.isUtf8()) throw FileRefused(fileName + ": not UTF-8, left as it is");
        const std::u16string result = replacedText(file.text());
        if (hasLoneSurrogate(result))
            throw FileRefused(fileName + ": halves of surrogate pairs would remain, left as it is");
        const std::string changed = file.withMark(result);
        if (changed != file.bytes()) rewrite.write(changed);
    }

    // Throws when interrupted: a text that is replaced in part must go nowhere. With --which the N-th match
    // has to be there for anything to be replaced.
    std::u16string replacedText(std::u16string_view subject) {
        std::size_t matches = 0;
        std::u16string result =
            replace_.replace(subject, tree_, settings_.adjustCase, settings_.which, &matches);
        if (interruptPending()) throw Interrupted();
        replaced_ = replaced_ || matches >= std::max<std::size_t>(settings_.which, 1);
        return result;
    }

    void fail(const std::string& message) {
        say(message);
        trouble_ = true;
    }

    // On standard error, after the output so far.
    static void say(const std::string& message) {
        std::cout.flush();
        std::cerr << "cvregexp: " << message << '\n';
    }

    const RE_Tree& tree_;
    const RE_Replace& replace_;
    const ReplaceSettings& settings_;
    bool replaced_ = false;
    bool trouble_ = false;
};

}  // namespace

int runReplace(const Arguments& words) {
    Corvane::regexp::CompileOptions compile;
    ParsedArguments arguments =
        parseArguments(words, "replace [OPTION...] PATTERN REPLACEMENT [FILE...]", replaceOptions(compile));
    PatternRequest request = takePattern(arguments);
    std::u16string replacementText = takeReplacement(arguments);
    const ReplaceSettings settings = readSettings(arguments);
    catchInterrupts();
    CompiledPattern pattern(std::move(request), compile);
    pattern.prepareForSearches();
    printWarnings(pattern.text(), pattern.warnings(), "pattern");
    printHints(pattern.text(), hintsOfPattern(pattern.text()));
    // After the pattern: both share the interpreter that runs their expressions.
    const CompiledReplacement replacement(std::move(replacementText), compile, pattern.scripts());
    printWarnings(replacement.text(), replacement.warnings(), "replacement");
    printHints(replacement.text(), hintsOfReplacement(replacement.text()));
    const int status = ReplaceRun(pattern, replacement, settings).runAll();
    if (pattern.scripts()) pattern.scripts()->finish();
    return status;
}

}  // namespace tool
