// The table of commands, in the order in which the help text lists them.
#include "tools/command.h"

namespace tool {

std::span<const Command> commandTable() {
    static constexpr Command commands[] = {
        {"match", "find every match of a pattern in files or standard input", runMatch},
        {"check", "show the warnings that a pattern raises, each with its place", runCheck},
    };
    return commands;
}

}  // namespace tool
