// The table of commands, in the order in which the help text lists them: those that search, those that look
// into a pattern, those that translate texts.
#include "tools/command.h"

namespace tool {

std::span<const Command> commandTable() {
    // Name, what the help says, function.
    static constexpr Command commands[] = {
        {"match", "find every match of a pattern in files or standard input", runMatch},
        {"replace", "replace the matches of a pattern in files or standard input", runReplace},
        {"split", "print the parts of files or standard input between the matches", runSplit},
        {"check", "show the warnings that a pattern raises, each with its place", runCheck},
        {"explain", "say in English what a pattern matches, and how its searches grow", runExplain},
        {"graph", "draw the node graph of a pattern", runGraph},
        {"trace", "show a search step by step, as text or as a page to replay it", runTrace},
        {"profile", "search a file and show what each node of the pattern did", runProfile},
        {"escape", "print a pattern that matches exactly a text", runEscape},
        {"wildcard", "print a pattern for a wildcard of * and ?", runWildcard},
        {"spaces", "print a text with a space in place of each white-space character", runSpaces},
    };
    return commands;
}

}  // namespace tool
