// The handler sets the host's interrupt flag, which running searches poll. The flag is a lock-free atomic,
// which makes setting it safe in a signal handler. The handler does nothing else.
#include "tools/interrupt.h"

#include "host/interrupt.h"

#include <csignal>

namespace tool {
namespace {

extern "C" void requestInterrupt(int) {
    utInterruptState::SetInterruptPending(true);
}

// Leaves alone what the parent process made ignored: see the header.
void catchSignal(int number) {
    struct sigaction current {};
    if (::sigaction(number, nullptr, &current) != 0 || current.sa_handler == SIG_IGN) return;
    struct sigaction action {};
    action.sa_handler = requestInterrupt;
    // No SA_RESTART: a blocked read must return. SA_RESETHAND gives the second Ctrl-C its usual effect.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    ::sigaction(number, &action, nullptr);
}

}  // namespace

void catchInterrupts() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) catchSignal(number);
    std::signal(SIGXFSZ, SIG_IGN);  // a file that grows too large is an error of the write
}

bool interruptPending() {
    return utInterruptState::IsInterruptPending();
}

}  // namespace tool
