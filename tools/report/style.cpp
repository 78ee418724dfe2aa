// What terminals can show.
#include "tools/report/style.h"

#include "tools/usage_error.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace tool {
namespace {

bool isSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

// The variables are conventions: NO_COLOR with any text refuses colours, TERM=dumb has none.
bool terminalHasColors() {
    const char* terminal = std::getenv("TERM");
    return !isSet("NO_COLOR") && terminal != nullptr && std::string_view(terminal) != "dumb" &&
           standardOutputIsTerminal();
}

// There is no way to ask a terminal for it; others would print the address.
bool terminalHasHyperlinks() {
    if (!terminalHasColors()) return false;
    for (const char* variable : {"KITTY_WINDOW_ID", "KONSOLE_VERSION", "VTE_VERSION", "WEZTERM_PANE",
                                 "WT_SESSION", "ITERM_SESSION_ID"})
        if (isSet(variable)) return true;
    return false;
}

bool wanted(const std::string& when, bool (*automatic)(), const char* option) {
    if (when == "always") return true;
    if (when == "never") return false;
    if (when == "auto") return automatic();
    throw UsageError(std::string(option) + " takes auto, always or never");
}

}  // namespace

bool colorWanted(const std::string& when) {
    return wanted(when, terminalHasColors, "--color");
}

bool hyperlinksWanted(const std::string& when) {
    return wanted(when, terminalHasHyperlinks, "--hyperlink");
}

bool standardOutputIsTerminal() {
    return ::isatty(STDOUT_FILENO) != 0;
}

}  // namespace tool
