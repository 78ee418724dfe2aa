// The options that say which pattern is meant and in which modes.
//
// RE_FLAG_EVALUATE is always set: whether expressions run is decided by the context (--lua). RE_FLAG_DOT_ALL
// is set unless --dot-line is given, as files are searched as one text.
#include "tools/pattern_options.h"

#include "tools/convert_text.h"
#include "tools/input.h"
#include "tools/search/pattern_text.h"
#include "tools/usage_error.h"

#include <algorithm>

namespace po = boost::program_options;

namespace tool {
namespace {

// One pattern a line; the last line may lack its end. An empty file holds no pattern, an empty line the empty one.
void addLines(std::vector<std::string>& patterns, const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        std::string line = text.substr(at, end - at);
        if (line.ends_with('\r')) line.pop_back();
        patterns.push_back(std::move(line));
        at = end + 1;
    }
}

std::string wholeFile(const std::string& name) {
    std::string text = readBytes(name);
    if (text.ends_with('\n'))  // the one that editors put after the last line
        text.pop_back();
    return text;
}

// The patterns as UTF-8. Given by an option, they leave the positional words alone.
std::vector<std::string> takePatternTexts(ParsedArguments& arguments) {
    std::vector<std::string> patterns;
    bool given = false;
    for (const char* const option : {"regexp", "file", "pattern-file"}) {
        if (!arguments.has(option)) continue;
        given = true;
        for (const std::string& value : arguments.options[option].as<Arguments>()) {
            if (option == std::string_view("regexp")) {
                patterns.push_back(value);
            } else if (option == std::string_view("file")) {
                addLines(patterns, readBytes(value));
            } else {
                patterns.push_back(wholeFile(value));
            }
        }
    }
    if (given) return patterns;
    // Without these options the pattern is the first word.
    if (arguments.positionals.empty()) throw UsageError("a pattern is missing");
    patterns.push_back(arguments.positionals.front());
    arguments.positionals.erase(arguments.positionals.begin());
    return patterns;
}

// Each option switches one mode on, but for --dot-line, which switches one off.
RE_Flags chosenFlags(const ParsedArguments& arguments) {
    RE_Flags flags = RE_FLAG_EVALUATE;
    if (!arguments.has("dot-line")) flags |= RE_FLAG_DOT_ALL;
    if (arguments.has("ignore-case")) flags |= RE_FLAG_IGNORE_CASE;
    if (arguments.has("line-anchors")) flags |= RE_FLAG_LINE_ANCHORS;
    if (arguments.has("free-spacing")) flags |= RE_FLAG_FREE_SPACING;
    if (arguments.has("allow-empty")) flags |= RE_FLAG_ALLOW_EMPTY;
    if (!arguments.has("forget-tokens")) flags |= RE_FLAG_KEEP_TOKENS;
    return flags;
}

// A capital letter that any of the patterns says makes case count for all of them.
bool smartCaseIgnores(const ParsedArguments& arguments, const std::vector<std::u16string>& patterns) {
    return arguments.has("smart-case") && !arguments.has("ignore-case") &&
           std::ranges::none_of(patterns,
                                [](const std::u16string& pattern) { return hasLiteralCapital(pattern); });
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
    add("regexp,e", po::value<Arguments>()->composing()->value_name("PATTERN"),
        "a pattern, instead of the first argument");
    add("file,f", po::value<Arguments>()->composing()->value_name("FILE"),
        "read patterns from FILE, one a line");
    add("pattern-file", po::value<Arguments>()->composing()->value_name("FILE"),
        "read one pattern from FILE, which may have many lines");
    add("fixed-strings,F", flag(), "patterns are texts, in which nothing has a meaning");
    add("ignore-case,i", flag(), "letters match in either case");
    add("smart-case,S", flag(), "the same, unless a pattern has a capital letter");
    add("free-spacing", flag(), "skip blanks and #-comments in the pattern");
    add("line-anchors", flag(), "^ and $ also match at the starts and ends of lines");
    add("dot-line", flag(), "the dot does not match a line feed");
    add("allow-empty", flag(), "an empty match counts as a match");
    add("refuse-empty", flag(), "an empty match does not count as a match");
    add("forget-tokens", flag(), "closing a token takes the tokens inside it out of effect");
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
PatternRequest takePatterns(ParsedArguments& arguments) {
    PatternRequest request;
    const bool fixed = arguments.has("fixed-strings");
    for (const std::string& text : takePatternTexts(arguments)) {
        request.texts.push_back(toUtf16(text));
        if (fixed) request.texts.back() = RE_Translate::escape(request.texts.back());
    }
    request.flags = chosenFlags(arguments);
    if (fixed) request.flags &= ~RE_FLAG_FREE_SPACING;
    if (smartCaseIgnores(arguments, request.texts)) request.flags |= RE_FLAG_IGNORE_CASE;
    // Of no patterns none matches.
    if (request.texts.empty()) request.texts.push_back(u"(?!)");
    request.refuseEmpty = arguments.has("refuse-empty");
    request.speedUp = chosenSpeedUp(arguments);
    request.scripts = readScriptRequest(arguments);
    return request;
}

PatternRequest takePattern(ParsedArguments& arguments) {
    PatternRequest request = takePatterns(arguments);
    if (request.texts.size() != 1) throw UsageError("this command takes one pattern");
    request.text = std::move(request.texts.front());
    return request;
}

}  // namespace tool
