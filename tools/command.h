// The commands of the program. A new command is one file with a function of this shape and one row in
// command_table.cpp; the main program knows none of them by name.
//
// Every command has the same parts: it reads the words, compiles the pattern, prints its warnings, does its work
// and returns a status. What goes wrong on the way is an exception: UsageError for the words, system_error for
// files, Interrupted for a signal.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// Words of a command line, or what is left of them.
using Arguments = std::vector<std::string>;

struct Command {
    std::string_view name;
    std::string_view summary;
    int (*run)(const Arguments& arguments);  // the words after the command name; returns an ExitStatus
};

// In the order of the help text. The table lives as long as the program.
std::span<const Command> commandTable();

// One function for each row of the table, each in tools/command_NAME.cpp. The last three share
// command_translate.cpp.
int runMatch(const Arguments& arguments);
int runReplace(const Arguments& arguments);
int runSplit(const Arguments& arguments);
int runCheck(const Arguments& arguments);
int runGraph(const Arguments& arguments);
int runTrace(const Arguments& arguments);
int runProfile(const Arguments& arguments);
int runExplain(const Arguments& arguments);
int runEscape(const Arguments& arguments);
int runWildcard(const Arguments& arguments);
int runSpaces(const Arguments& arguments);

}  // namespace tool
