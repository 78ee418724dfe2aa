// The files of a run, one after the other.
//
// In place, a file is either replaced as a whole or left as it was: see file_rewrite.h. On standard output every file
// is printed, also one without a match.
#include "tools/replace/replace_run.h"

#include "tools/convert_text.h"
#include "tools/exit_status.h"
#include "tools/file_rewrite.h"
#include "tools/input.h"
#include "tools/interrupt.h"
#include "tools/replace/file_text.h"
#include "tools/replace/patch_file.h"
#include "tools/replace/unified_diff.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>
#include <set>
#include <system_error>

namespace tool {
namespace {

namespace fs = std::filesystem;

// The name under which a patch finds the file. `patch` follows no link and nothing that leads up, so such a file has the
// name of what it is.
std::string nameInPatch(const std::string& given, const fs::path& target) {
    std::error_code problem;
    fs::path name(given);
    if (fs::is_symlink(name, problem)) name = target.lexically_proximate(fs::current_path());
    name = name.lexically_normal();
    if (!name.empty() && *name.begin() == "..") name = target;
    // Under the directories a/ and b/, of which an absolute name is a continuation, too.
    return name.is_absolute() ? name.relative_path().string() : name.string();
}

// Whether standard output goes to this file, which a walk may come by.
bool isStandardOutput(const std::string& name) {
    struct stat file;
    struct stat output;
    return ::stat(name.c_str(), &file) == 0 && ::fstat(STDOUT_FILENO, &output) == 0 &&
           file.st_dev == output.st_dev && file.st_ino == output.st_ino;
}

class ReplaceRun {
public:
    ReplaceRun(const Replacer& replacer, const ReplaceSettings& settings)
        : replacer_(replacer), settings_(settings) {
        if (!settings.patchName.empty()) patch_.emplace(settings.patchName);
    }

    // Every file is tried. The status tells trouble first, then whether anything was replaced in any of them.
    int runAll() {
        const auto named = [this](const std::string& name) { return runFile(name, false); };
        if (settings_.entersDirectories) {
            const bool whole = Walker(settings_.walk)
                                   .walkAll(
                                       settings_.files, named,
                                       [this](const std::string& path) { return runFile(path, true); },
                                       [this](const std::string& message) { fail(message); });
            if (!whole && interruptPending()) throw Interrupted();
        } else {
            std::ranges::for_each(settings_.files, named);
        }
        if (trouble_) return exitTrouble;
        return replaced_ ? exitPositive : exitNegative;
    }

private:
    // A file that cannot be read or written does not keep the others from being changed. True.
    bool runFile(const std::string& name, bool isWalked) {
        try {
            if (settings_.form == ReplaceForm::print) {
                printFile(name);
            } else {
                changeFile(name, isWalked);
            }
        } catch (const std::system_error& failure) {
            fail(failure.what());
        } catch (const FileRefused& failure) {
            fail(failure.what());
        }
        return true;
    }

    // What has no form in the encoding of the file is printed as a substitute, and a message says so.
    void printFile(const std::string& name) {
        const FileText file(readAllBytes(name), settings_.encoding);
        const ReplacedText result = replace(file, false);
        const EncodedText changed = file.encoded(result.text);
        std::cout << changed.bytes;
        const std::string label = name == "-" ? "(standard input)" : name;
        if (!file.isExact()) say(label + ": not " + file.encoding() + ", bytes that are not became U+FFFD");
        if (changed.isExact) return;
        say(label + (hasLoneSurrogate(result.text)
                         ? ": halves of surrogate pairs became U+FFFD"
                         : ": what has no form in " + file.encoding() + " was substituted"));
    }

    // In a file nothing is lost: what cannot be written back is left as it is. The rewrite looks at the file before it is
    // read, so that a change in between is noticed.
    void changeFile(const std::string& name, bool isWalked) {
        if (isDirectory(name)) throw FileRefused(name + ": a directory, in which -r replaces");
        const FileRewrite rewrite(name);
        // A file that is named twice, or found by two links, is changed once. What this run writes is no part of it.
        if (!seen_.insert(rewrite.target().string()).second) return;
        if (isWalked && (isStandardOutput(name) || isPatch(rewrite.target()))) return;
        const FileText file(readAllBytes(name), settings_.encoding);
        if (isWalked && !settings_.findsBinary && file.isBinary()) return;
        const ReplacedText result = replace(file, wantsPatch());
        if (!replacer_.hasReplaced(result.matches)) return;
        if (!file.isExact()) throw FileRefused(name + ": not " + file.encoding() + ", left as it is");
        const EncodedText changed = file.encoded(result.text);
        if (!changed.isExact) {
            throw FileRefused(name +
                              (hasLoneSurrogate(result.text)
                                   ? ": halves of surrogate pairs would remain"
                                   : ": not all of the new text has a form in " + file.encoding()) +
                              ", left as it is");
        }
        if (changed.bytes == file.bytes()) return;
        const std::string patch = wantsPatch() ? patchFor(name, rewrite, file, result, changed.bytes) : "";
        if (settings_.form == ReplaceForm::show) {
            std::cout << patch;
        } else {
            write(rewrite, changed.bytes, patch);
        }
    }

    // The patch comes first: see patch_file.h. Without it nothing more is changed.
    void write(const FileRewrite& rewrite, const std::string& changed, const std::string& patch) {
        if (!patch_) return rewrite.write(changed);
        try {
            patch_->append(patch);
        } catch (const std::system_error& failure) {
            throw std::runtime_error(failure.what());
        }
        try {
            rewrite.write(changed);
        } catch (...) {
            patch_->takeBack();
            throw;
        }
    }

    std::string patchFor(const std::string& name, const FileRewrite& rewrite, const FileText& file,
                         const ReplacedText& result, const std::string& changed) const {
        const auto linesOf = [](const auto& text) { return std::ranges::count(text, '\n'); };
        // In encodings of wider units other characters have such bytes as well.
        if (linesOf(file.bytes()) != linesOf(file.text()) || linesOf(changed) != linesOf(result.text))
            throw FileRefused(name + ": no patch can show lines of " + file.encoding() + ", left as it is");
        return unifiedDiff(nameInPatch(name, rewrite.target()), file.bytes(), changed,
                           lineChanges(file.text(), result.text, result.edits));
    }

    bool wantsPatch() const { return patch_.has_value() || settings_.form == ReplaceForm::show; }

    bool isPatch(const fs::path& target) const {
        std::error_code problem;
        return patch_ && fs::equivalent(target, settings_.patchName, problem);
    }

    ReplacedText replace(const FileText& file, bool wantsEdits) {
        ReplacedText result = replacer_.run(file.text(), wantsEdits);
        replaced_ = replaced_ || replacer_.hasReplaced(result.matches);
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

    const Replacer& replacer_;
    const ReplaceSettings& settings_;
    std::optional<PatchFile> patch_;
    std::set<std::string> seen_;
    bool replaced_ = false;
    bool trouble_ = false;
};

}  // namespace

int replaceInFiles(const Replacer& replacer, const ReplaceSettings& settings) {
    return ReplaceRun(replacer, settings).runAll();
}

}  // namespace tool
