// Errors of the system, told with the name of the file that they are about.
#pragma once

#include <cerrno>
#include <string>
#include <system_error>

namespace tool {

/// Throws for the last error of the system, or for the one given.
[[noreturn]] inline void failOn(const std::string& name, int error = errno) {
    throw std::system_error(error, std::generic_category(), name);
}

}  // namespace tool
