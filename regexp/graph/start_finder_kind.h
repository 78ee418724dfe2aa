// How a search finds the positions at which a match may start. Chosen once for each pattern.
#pragma once

#include <cstdint>

/// In the order in which they are considered.
enum class RE_Start_Finder : std::uint8_t {
    none,             ///< every position is tried
    anchored,         ///< an anchor at the front of the pattern seeks for itself
    literal,          ///< a literal that every match starts with
    literalBehind,    ///< a literal that has to stand before every match
    requiredLiteral,  ///< a literal within every match, and back from it
    prefixes,         ///< the first units of the alternatives, several places at once
    windows,          ///< the first units of many literals, by a table
    firstUnits        ///< the units that a match can start with
};

/// A word or two for people.
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
