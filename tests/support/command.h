// Commands of the shell that tests run: what they print, and how they end.
#pragma once

#include <string>

namespace corvane_tests {

struct CommandResult {
    std::string output;  ///< of its standard output
    int status;          ///< with which it exits; -1 when it does not by itself
};

CommandResult runCommand(const std::string& command);

}  // namespace corvane_tests
