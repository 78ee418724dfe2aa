// Units as they appear in the labels of nodes.
#pragma once

#include <cstddef>
#include <string>

/// UTF-8 of the units; control units and lone surrogates are written as \x{...}.
std::string labelText(const char16_t* text, std::size_t length);
inline std::string labelText(char16_t unit) {
    return labelText(&unit, 1);
}
