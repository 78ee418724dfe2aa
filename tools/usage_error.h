// Thrown when the words on the command line make no sense together; the main program prints the message. For
// what the user can mend by other words; a file that cannot be read is a system_error.
#pragma once

#include <stdexcept>

namespace tool {

class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace tool
