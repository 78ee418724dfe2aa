// Reading of a command's words with Boost.Program_options. Whatever is wrong with them becomes an exception
// whose message the main program prints, so no command checks the same thing in its own words.
#include "tools/arguments.h"

#include "tools/usage_error.h"

#include <boost/program_options/parsers.hpp>
#include <boost/program_options/positional_options.hpp>

#include <charconv>
#include <iostream>

namespace po = boost::program_options;

namespace tool {

// Found by Boost through the type of the value.
static void validate(boost::any& value, const std::vector<std::string>&, FlagCount*, int) {
    FlagCount count = value.empty() ? FlagCount() : boost::any_cast<FlagCount>(value);
    ++count.times;
    value = count;
}

po::typed_value<FlagCount>* flag() {
    return po::value<FlagCount>()->zero_tokens();
}

std::size_t ParsedArguments::times(const char* flagName) const {
    return has(flagName) ? options[flagName].as<FlagCount>().times : 0;
}

ParsedArguments parseArguments(const Arguments& words, std::string_view usage,
                               const po::options_description& known) {
    po::options_description all;
    all.add(known).add_options()("positional", po::value<Arguments>());
    po::positional_options_description positions;
    // -1: any number of them.
    positions.add("positional", -1);

    // Guessing is what Boost calls the abbreviation of long options.
    const int style = po::command_line_style::unix_style & ~po::command_line_style::allow_guessing;
    ParsedArguments parsed;
    try {
        po::store(po::command_line_parser(words).options(all).positional(positions).style(style).run(),
                  parsed.options);
    } catch (const po::unknown_option& failure) {
        throw UsageError(failure.what() + std::string("; what is no option but begins with - follows --"));
    }
    // Only now are bound variables stored; before this line the compile options have their defaults.
    po::notify(parsed.options);
    // Help wins over everything that may be missing or wrong besides, as it is asked for in order to learn
    // that.
    if (parsed.has("help")) {
        std::cout << "Usage: cvregexp " << usage << "\n" << known;
        throw HelpPrinted();
    }
    if (parsed.has("positional")) parsed.positionals = parsed.options["positional"].as<Arguments>();
    return parsed;
}

// Not left to Boost, which reads -1 as the greatest number there is.
std::size_t ParsedArguments::number(const char* option) const {
    const std::string& text = options[option].as<std::string>();
    const char* const end = text.data() + text.size();
    std::size_t value = 0;
    const auto [stop, problem] = std::from_chars(text.data(), end, value);
    if (problem != std::errc() || stop != end)
        throw UsageError("--" + std::string(option) + " takes a number, not \"" + text + "\"");
    return value;
}

}  // namespace tool
