// The options of `cvregexp match` that do not concern the pattern.
#pragma once

#include "tools/arguments.h"
#include "tools/report.h"

namespace tool {

// Declares the options, with the help that --help prints.
boost::program_options::options_description matchOptions();

// The options, checked and without defaults that are left open.
struct MatchSettings {
    ReportStyle style;
    std::size_t maxCount;  // matches of each text
    Arguments fileNames;
};

// To be called after the pattern was taken from the positional words; what is left are the files.
MatchSettings readMatchSettings(const ParsedArguments& arguments);

}  // namespace tool
