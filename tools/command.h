// The commands of the program. A new command is one file with a function of this shape and one row in
// command_table.cpp; the main program knows none of them by name.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

using Arguments = std::vector<std::string>;

struct Command {
    std::string_view name;
    std::string_view summary;
    int (*run)(const Arguments& arguments);  // the words after the command name; returns an ExitStatus
};

std::span<const Command> commandTable();

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
