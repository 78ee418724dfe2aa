// The ways in which a search finds the positions at which a match may start. One is chosen for each pattern
// (`passes/start_finder.cpp`), and tests assert which one.
//
// None of them may pass over a start of a match; how they differ is in how often they stop in vain.
#pragma once

#include <cstdint>

/// In the order in which they are considered.
enum class RE_Start_Finder : std::uint8_t {
    none,             ///< every position is tried
    anchored,         ///< an anchor at the front of the pattern seeks for itself
    literal,          ///< a literal that every match starts with
    literalBehind,    ///< a literal, or a unit of a class, that has to precede every match
    requiredLiteral,  ///< a literal within every match, and back from it
    prefixes,         ///< the first units of the alternatives, several places at once
    windows,          ///< the first units of many literals, by a table
    firstUnits        ///< the units that a match can start with
};

/// A word or two for people. Part of the output of the tool: tests compare it.
constexpr const char* nameOf(RE_Start_Finder finder) {
    switch (finder) {
        case RE_Start_Finder::anchored:
            return "anchored";
        case RE_Start_Finder::literal:
            return "literal";
        case RE_Start_Finder::literalBehind:
            return "literal behind";
        case RE_Start_Finder::requiredLiteral:
            return "required literal";
        case RE_Start_Finder::prefixes:
            return "prefixes";
        case RE_Start_Finder::windows:
            return "windows";
        case RE_Start_Finder::firstUnits:
            return "first units";
        case RE_Start_Finder::none:
            break;
    }
    return "none";
}
