// `cvregexp escape`, `cvregexp wildcard` and `cvregexp spaces`: one text in, one text out. No pattern is
// compiled, so these commands have no pattern options and raise no warnings.
#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/convert_text.h"
#include "tools/exit_status.h"
#include "tools/input.h"
#include "tools/usage_error.h"

#include "regexp/regexp.h"

#include <iostream>

namespace po = boost::program_options;

namespace tool {
namespace {

// The functions of the library that these commands offer.
using Translation = std::u16string (*)(std::u16string_view);

// Without a text, standard input is translated as it is and no line feed is added.
int translate(const Arguments& words, const std::string& command, Translation translation) {
    po::options_description known;
    known.add_options()("help,h", "print this help");
    const ParsedArguments arguments = parseArguments(words, command + " [TEXT]", known);
    if (arguments.positionals.empty()) {
        // Byte for byte what a pipe would pass on, but for the translation.
        std::cout << toUtf8(translation(Input("-").text()));
    } else if (arguments.positionals.size() == 1) {
        std::cout << toUtf8(translation(toUtf16(arguments.positionals.front()))) << '\n';
    } else {
        throw UsageError(command + " takes one text and nothing else");
    }
    return exitPositive;
}

}  // namespace

// What matches exactly the text; a wildcard as a pattern; white space as plain spaces.
int runEscape(const Arguments& words) {
    return translate(words, "escape", RE_Translate::escape);
}

int runWildcard(const Arguments& words) {
    return translate(words, "wildcard", RE_Translate::translateWildcard);
}

int runSpaces(const Arguments& words) {
    return translate(words, "spaces", RE_Translate::makeWhitespaceSpaces);
}

}  // namespace tool
