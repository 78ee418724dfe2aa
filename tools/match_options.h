// The options of `cvregexp match` that do not concern the pattern.
#pragma once

#include "tools/arguments.h"
#include "tools/search/search_pattern.h"
#include "tools/search/search_run.h"

namespace tool {

// Declares the options, with the help that --help prints.
boost::program_options::options_description matchOptions();

// The options, checked and without defaults that are left open.
struct MatchSettings {
    SearchModes modes;
    RunSettings run;
};

// To be called after the patterns were taken from the positional words; what is left are the files.
MatchSettings readMatchSettings(const ParsedArguments& arguments, std::size_t patternCount);

}  // namespace tool
