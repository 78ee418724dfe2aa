// Reading of a command's words with Boost.Program_options.
#include "tools/arguments.h"

#include <boost/program_options/parsers.hpp>
#include <boost/program_options/positional_options.hpp>

#include <iostream>

namespace po = boost::program_options;

namespace tool {

ParsedArguments parseArguments(const Arguments& words, const po::options_description& known) {
    po::options_description all;
    all.add(known).add_options()("positional", po::value<Arguments>());
    po::positional_options_description positions;
    positions.add("positional", -1);

    const int style = po::command_line_style::unix_style & ~po::command_line_style::allow_guessing;
    ParsedArguments parsed;
    po::store(po::command_line_parser(words).options(all).positional(positions).style(style).run(),
              parsed.options);
    po::notify(parsed.options);
    if (parsed.has("positional")) parsed.positionals = parsed.options["positional"].as<Arguments>();
    return parsed;
}

void printCommandHelp(std::string_view usage, const po::options_description& known) {
    std::cout << "Usage: cvregexp " << usage << "\n" << known;
}

}  // namespace tool
