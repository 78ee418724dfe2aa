// One run of `cvregexp replace` over all its files.
#pragma once

#include "tools/arguments.h"
#include "tools/replace/replacer.h"
#include "tools/search/encoding.h"
#include "tools/walk/walker.h"

#include <string>

namespace tool {

// print: the changed texts; change: the files; show: as a patch, what would be changed.
enum class ReplaceForm { print, change, show };

struct ReplaceSettings {
    ReplaceForm form = ReplaceForm::print;
    bool entersDirectories = false;
    bool findsBinary = false;  // also in directories
    std::string patchName;     // of the file that keeps what was changed; empty: none is wanted
    EncodingChoice encoding;
    WalkSettings walk;
    Arguments files;  // and directories, as given; "-" is standard input, "" the working directory
};

// Returns an ExitStatus. Throws Interrupted, and std::system_error when the file of the patch cannot be written.
int replaceInFiles(const Replacer& replacer, const ReplaceSettings& settings);

}  // namespace tool
