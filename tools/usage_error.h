// Thrown when the words on the command line make no sense together; the main program prints the message.
#pragma once

#include <stdexcept>

namespace tool {

class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace tool
