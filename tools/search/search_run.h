// One run of `cvregexp match` over all its files, by several threads where that pays.
#pragma once

#include "tools/arguments.h"
#include "tools/report/sink.h"
#include "tools/search/line_finder.h"
#include "tools/search/text_source.h"
#include "tools/walk/walker.h"

#include <cstddef>

namespace tool {

enum class FileOrder { path, modified };

struct RunSettings {
    ReportStyle style;
    EncodingChoice encoding;
    WalkSettings walk;
    FileOrder order = FileOrder::path;
    Arguments files;          // and directories, as given; "-" is standard input, "" the working directory
    std::size_t threads = 0;  // 0: as many as pay
    bool searchesBinary = false;   // as any other file
    bool findsBinary = false;      // also those that a walk has come by
    bool quietAboutFiles = false;  // no messages about what cannot be read
    bool listsOnly = false;        // the names of what would be searched
    bool stats = false;
    bool mayUseThreads = true;  // expressions have one interpreter
};

// Returns an ExitStatus. Throws Interrupted, and std::system_error when the output cannot be written.
int searchFiles(const FinderPatterns& patterns, const RunSettings& settings);

}  // namespace tool
