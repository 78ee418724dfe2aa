// Ctrl-C: the first one asks the engine to stop, so that what was found so far can still be printed; the second
// one ends the program at once.
#pragma once

#include <stdexcept>

namespace tool {

class Interrupted : public std::runtime_error {
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

// Left alone when the parent process made SIGINT ignored, as shells do for background jobs.
void catchInterrupts();

bool interruptPending();

}  // namespace tool
