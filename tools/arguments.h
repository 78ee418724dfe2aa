// Reading of a command's words with Boost.Program_options, in one style for all commands.
//
// A command declares its options, calls parseArguments once, and reads the rest from the result. Options may
// stand anywhere among the positional words; what follows "--" is positional, so a pattern may begin with a
// hyphen.
#pragma once

#include "tools/command.h"

#include <boost/program_options/options_description.hpp>
#include <boost/program_options/value_semantic.hpp>
#include <boost/program_options/variables_map.hpp>

#include <cstddef>
#include <string_view>

namespace tool {

// An option without a value. It may be given any number of times, as aliases of shells may have it already.
struct FlagCount {
    std::size_t times = 0;
};
boost::program_options::typed_value<FlagCount>* flag();

// The words of one command line. Owns copies of all of them.
struct ParsedArguments {
    boost::program_options::variables_map options;
    Arguments positionals;  // in the order given

    bool has(const char* option) const { return options.count(option) != 0; }
    // How often a flag was given.
    std::size_t times(const char* flagName) const;

    // The value of an option that is declared as text: digits and nothing else, or a UsageError.
    std::size_t number(const char* option) const;
};

// Thrown when the words contained --help and the help is printed: the command has nothing left to do. No
// std::exception, so that no handler of errors takes it for one.
struct HelpPrinted {};

// Reads the words of a command that is used like this, and prints the help when they ask for it. Long options
// are never abbreviated, so that a new option cannot change the meaning of an old script. Values bound to
// variables (the compile options) are stored before this returns.
ParsedArguments parseArguments(const Arguments& words, std::string_view usage,
                               const boost::program_options::options_description& known);

}  // namespace tool
