// Ctrl-C, a hang-up or a request to terminate: the first one asks the engine to stop, so that what was found
// so far can still be printed and temporary files are removed; the second one ends the program at once.
//
// Commands consult `interruptPending` between searches too, as a short search may end before it polls the
// flag.
#pragma once

#include <stdexcept>

namespace tool {

// Thrown where an incomplete result would pass for a complete one. The main program exits with the status that
// shells give to programs which the signal has ended: 128 and its number.
class Interrupted : public std::runtime_error {
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

// To be called once, before the work. A signal that the parent process made ignored, as shells do with SIGINT
// for background jobs, is left alone.
void catchInterrupts();

// Safe to call from any thread.
bool interruptPending();

// 128 and the number of the signal that was caught; `exitTrouble` when none was.
int interruptStatus();

// Around work that may not notice an interrupt by itself. If it has not ended two seconds after one, the program
// ends at once, as by a second interrupt. For one thread at a time.
class InterruptGrace {
public:
    InterruptGrace();
    InterruptGrace(const InterruptGrace&) = delete;
    InterruptGrace& operator=(const InterruptGrace&) = delete;
    ~InterruptGrace();
};

// Waits until there is something to read from the descriptor, or its end, or a signal. False for a signal: the
// wait ends at once also when the signal comes just before it. Returns at once for regular files.
bool waitForInput(int descriptor);
// The same until the descriptor takes something: a pipe as much as it takes at once.
bool waitForOutput(int descriptor);

}  // namespace tool
