// The options that say which files are meant, for the commands that go through directories.
#pragma once

#include "tools/arguments.h"
#include "tools/walk/walker.h"

namespace tool {

void addWalkOptions(boost::program_options::options_description& options);
WalkSettings readWalkSettings(const ParsedArguments& arguments);

// The files and directories of a command line: where there are none, the working directory ("") if directories were asked
// for, else standard input ("-").
Arguments namedFiles(const ParsedArguments& arguments, bool wantsDirectory);

// Whether files that a walk meets are wanted though they are binary.
bool wantsBinaryFiles(const ParsedArguments& arguments);

}  // namespace tool
