// The options that say which pattern is meant and in which modes; every command that takes a pattern has
// them.
#pragma once

#include "tools/arguments.h"
#include "tools/script_host.h"

#include "regexp/options/compile_options.h"
#include "regexp/regexp.h"

#include <string>

namespace tool {

// The pattern itself, its modes, and the options about expressions.
boost::program_options::options_description patternOptions();

// One line of help for each compile option; parsing stores the given values in `options`.
boost::program_options::options_description compileOptions(Corvane::regexp::CompileOptions& options);

// The options of a command that takes a pattern: its own and these.
boost::program_options::options_description withPatternOptions(
    const boost::program_options::options_description& own, Corvane::regexp::CompileOptions& compile);

// When machine code and an automaton are made for searches.
enum class SpeedUp { automatic, now, never };

// What the words say about the pattern, with nothing compiled yet.
struct PatternRequest {
    std::u16string text;
    RE_Flags flags;
    SpeedUp speedUp;
    ScriptRequest scripts;
};

// Takes the pattern from -e or -f, or else from the first positional word, which is then removed.
PatternRequest takePattern(ParsedArguments& arguments);

}  // namespace tool
