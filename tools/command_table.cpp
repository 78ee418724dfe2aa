// The table of commands, in the order in which the help text lists them.
#include "tools/command.h"

namespace tool {

std::span<const Command> commandTable() {
    static constexpr Command commands[] = {
        {"match", "find every match of a pattern in files or standard input", runMatch},
        {"replace", "replace the matches of a pattern in files or standard input", runReplace},
        {"split", "print the parts of files or standard input between the matches", runSplit},
        {"check", "show the warnings that a pattern raises, each with its place", runCheck},
        {"escape", "print a pattern that matches exactly a text", runEscape},
        {"wildcard", "print a pattern for a wildcard of * and ?", runWildcard},
        {"spaces", "print a text with a space in place of each white-space character", runSpaces},
    };
    return commands;
}

}  // namespace tool
