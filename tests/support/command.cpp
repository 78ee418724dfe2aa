// Running a command and collecting its output.
#include "tests/support/command.h"

#include <sys/wait.h>

#include <array>
#include <cstdio>

namespace corvane_tests {

CommandResult runCommand(const std::string& command) {
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return {"", -1};
    }
    std::string output;
    std::array<char, 4096> part;
    for (std::size_t got = 0; (got = std::fread(part.data(), 1, part.size(), pipe)) != 0;) {
        output.append(part.data(), got);
    }
    const int status = ::pclose(pipe);
    return {output, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

}  // namespace corvane_tests
