// Writing of a whole text to a descriptor.
#pragma once

#include <string>
#include <string_view>

namespace tool {

// Writes all of it, however often a signal or a full pipe cuts it. Throws std::system_error with the name.
void writeAll(int descriptor, const std::string& name, std::string_view text);

}  // namespace tool
