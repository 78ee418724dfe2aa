// A write may be partial or interrupted by a signal; only other errors count.
#include "tools/write_all.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tool {

void writeAll(int descriptor, const std::string& name, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR) throw std::system_error(errno, std::generic_category(), name);
        if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace tool
