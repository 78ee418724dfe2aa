// Files that commands write beside their output.
#pragma once

#include <string>
#include <string_view>

namespace tool {

// Throws std::system_error when the file cannot be written.
void writeFile(const std::string& name, std::string_view content);

}  // namespace tool
