// Ctrl-C, a hang-up or a request to terminate: the first one asks the engine to stop, so that what was found
// so far can still be printed and temporary files are removed; the second one ends the program at once.
#pragma once

#include <stdexcept>

namespace tool {

class Interrupted : public std::runtime_error {
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

// A signal that the parent process made ignored, as shells do with SIGINT for background jobs, is left alone.
void catchInterrupts();

bool interruptPending();

}  // namespace tool
