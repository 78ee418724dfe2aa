// Changing a file in place so that at every moment either the old content or the new one is there as a whole.
#pragma once

#include <string>
#include <string_view>

namespace tool {

// Writes a temporary file beside the old one, with its permissions and (where allowed) its owner, brings it to the
// disk, and renames it. A symbolic link is followed, not replaced. Throws std::system_error, and then the file is
// as it was and the temporary one gone.
void rewriteFile(const std::string& fileName, std::string_view content);

}  // namespace tool
