// The options that say which pattern is meant and in which modes.
//
// RE_FLAG_EVALUATE is always set: whether expressions run is decided by the context (--lua). RE_FLAG_DOT_ALL
// is set unless --dot-line is given, as files are searched as one text.
#include "tools/pattern_options.h"

#include "tools/input.h"
#include "tools/usage_error.h"
#include "tools/utf8.h"

namespace po = boost::program_options;

namespace tool {
namespace {

// The pattern as UTF-8. Given by an option, it leaves the positional words alone.
std::string takePatternText(ParsedArguments& arguments) {
    // Two patterns would have to be joined somehow; nobody could say how from the options alone.
    if (arguments.has("regexp") && arguments.has("pattern-file"))
        throw UsageError("give one pattern, with -e or with -f");
    if (arguments.has("regexp")) return arguments.options["regexp"].as<std::string>();
    if (arguments.has("pattern-file")) {
        std::string text = readBytes(arguments.options["pattern-file"].as<std::string>());
        if (text.ends_with('\n'))  // the one that editors put after the last line
            text.pop_back();
        return text;
    }
    // Without -e and -f the pattern is the first word.
    if (arguments.positionals.empty()) throw UsageError("a pattern is missing");
    std::string text = arguments.positionals.front();
    arguments.positionals.erase(arguments.positionals.begin());
    return text;
}

// Each option switches one mode on, but for --dot-line, which switches one off.
RE_Flags chosenFlags(const ParsedArguments& arguments) {
    RE_Flags flags = RE_FLAG_EVALUATE;
    if (!arguments.has("dot-line")) flags |= RE_FLAG_DOT_ALL;
    if (arguments.has("ignore-case")) flags |= RE_FLAG_IGNORE_CASE;
    if (arguments.has("line-anchors")) flags |= RE_FLAG_LINE_ANCHORS;
    if (arguments.has("free-spacing")) flags |= RE_FLAG_FREE_SPACING;
    if (arguments.has("allow-empty")) flags |= RE_FLAG_ALLOW_EMPTY;
    if (arguments.has("keep-tokens")) flags |= RE_FLAG_KEEP_TOKENS;
    return flags;
}

SpeedUp chosenSpeedUp(const ParsedArguments& arguments) {
    if (!arguments.has("speed-up")) return SpeedUp::automatic;
    const auto when = arguments.options["speed-up"].as<std::string>();
    if (when == "auto") return SpeedUp::automatic;
    if (when == "now") return SpeedUp::now;
    if (when == "never") return SpeedUp::never;
    throw UsageError("--speed-up is auto, now or never, not " + when);
}

}  // namespace

po::options_description patternOptions() {
    po::options_description options("Pattern");
    auto add = options.add_options();
    add("regexp,e", po::value<std::string>()->value_name("PATTERN"),
        "the pattern, instead of the first argument");
    add("pattern-file,f", po::value<std::string>()->value_name("FILE"), "read the pattern from FILE");
    add("ignore-case,i", "letters match in either case");
    add("line-anchors,m", "^ and $ also match at the starts and ends of lines");
    add("free-spacing,x", "skip blanks and #-comments in the pattern");
    add("dot-line", "the dot does not match a line feed");
    add("allow-empty", "an empty match counts as a match");
    add("keep-tokens", "closing a token leaves the tokens inside it in effect");
    add("speed-up", po::value<std::string>()->value_name("WHEN"),
        "when machine code and an automaton are made: auto (once they pay, the default), now, or never");
    options.add(scriptOptions());
    return options;
}

// Each option of the library describes and parses itself, so a new one needs nothing here.
po::options_description compileOptions(Corvane::regexp::CompileOptions& options) {
    po::options_description descriptions("Compilation");
    for (Corvane::regexp::Option::IOption* option : options.getOptions())
        descriptions.add(option->optionParser());
    return descriptions;
}

// The own ones first, as they are what the user looks for in the help.
po::options_description withPatternOptions(const po::options_description& own,
                                           Corvane::regexp::CompileOptions& compile) {
    po::options_description known;
    known.add(own).add(patternOptions()).add(compileOptions(compile));
    return known;
}

// Bytes that are not UTF-8 become U+FFFD: any command line is a pattern.
PatternRequest takePattern(ParsedArguments& arguments) {
    std::u16string text = toUtf16(takePatternText(arguments));
    return {std::move(text), chosenFlags(arguments), chosenSpeedUp(arguments), readScriptRequest(arguments)};
}

}  // namespace tool
