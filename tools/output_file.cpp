// Files that commands write beside their output. They are made new, so a plain stream does; file_rewrite.h is
// for files whose content matters.
#include "tools/output_file.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace tool {

void writeFile(const std::string& name, std::string_view content) {
    std::ofstream file(name, std::ios::binary);
    // Opening may have failed as well; the stream refuses to write then, and errno has the reason of either.
    if (!(file << content << std::flush)) throw std::system_error(errno, std::generic_category(), name);
}

}  // namespace tool
