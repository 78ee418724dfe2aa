// A stretch of work that no signal may cut.
#pragma once

#include <csignal>
#include <initializer_list>

namespace tool {

// Signals that end the program wait while this lives. For what must be done as a whole, and does not take long.
class SignalsHeld {
public:
    SignalsHeld() {
        sigset_t held;
        sigemptyset(&held);
        for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) sigaddset(&held, number);
        pthread_sigmask(SIG_BLOCK, &held, &before_);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t before_;
};

}  // namespace tool
