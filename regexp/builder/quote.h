// Writing a unit so that a pattern takes it for itself.
//
// One way of quoting serves every place, so that no caller has to know where its text ends up. Internal to
// the builder.
#pragma once

#include <cstdint>
#include <string>

namespace RE_Builder_Space {

/// Appends the unit so that it matches itself within a set and outside of one, under free spacing, and next
/// to anything that a builder writes.
void appendQuoted(std::u16string& pattern, char16_t unit);

/// Appends the escape that gives the unit's value in hexadecimal digits and braces.
void appendHexadecimal(std::u16string& pattern, char16_t unit);

/// The number in decimal digits.
std::u16string decimal(std::uint64_t number);

}  // namespace RE_Builder_Space
