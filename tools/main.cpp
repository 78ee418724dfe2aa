// The program `cvregexp`: picks a command from the table and turns exceptions into messages and exit
// statuses. It knows no command by name.
#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/exit_status.h"
#include "tools/interrupt.h"

#include <exception>
#include <iostream>

namespace {

void printHelp(std::ostream& out) {
    out << "Usage: cvregexp COMMAND [OPTION...] [ARGUMENT...]\n\nCommands:\n";
    for (const tool::Command& command : tool::commandTable())
        out << "  " << command.name << "  " << command.summary << '\n';
    out << "\n`cvregexp COMMAND --help` explains one command; `cvregexp --version` prints the version.\n";
}

// The first word is the command; everything after it is the command's business.
int dispatch(const tool::Arguments& words) {
    if (words.empty()) {
        printHelp(std::cerr);
        return tool::exitTrouble;
    }
    if (words.front() == "help" && words.size() > 1) return dispatch({words[1], "--help"});
    if (words.front() == "--help" || words.front() == "-h" || words.front() == "help") {
        printHelp(std::cout);
        return tool::exitPositive;
    }
    if (words.front() == "--version") {
        std::cout << "cvregexp " CORVANE_VERSION "\n";
        return tool::exitPositive;
    }
    for (const tool::Command& command : tool::commandTable())
        if (command.name == words.front()) return command.run({words.begin() + 1, words.end()});
    std::cerr << "cvregexp: no command is named \"" << words.front() << "\"; see cvregexp --help\n";
    return tool::exitTrouble;
}

// Output that could not be written is trouble, whatever the command found: a full disk must not look like
// success.
int run(const tool::Arguments& words) {
    int status = tool::exitPositive;
    try {
        status = dispatch(words);
    } catch (const tool::HelpPrinted&) {
    }
    // Only now is everything written that a command has printed.
    if (std::cout.flush()) return status;
    std::cerr << "cvregexp: cannot write to standard output\n";
    return tool::exitTrouble;
}

}  // namespace

int main(int argc, char** argv) {
    // All output goes through streams; only the progress line and programs of others use stdio, on other
    // files.
    std::ios::sync_with_stdio(false);
    try {
        return run({argv + 1, argv + argc});
    } catch (const tool::Interrupted&) {
        std::cout.flush();
        return tool::interruptStatus();
    } catch (const std::exception& failure) {
        std::cout.flush();
        std::cerr << "cvregexp: " << failure.what() << '\n';
        return tool::exitTrouble;
    }
}
