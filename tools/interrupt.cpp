// The handler sets the host's interrupt flag, which running searches poll, and writes a byte into a pipe, which
// waits for input poll: a signal between a look at the flag and the wait is not missed. The flag is a lock-free
// atomic and `write` is allowed in handlers, as is `alarm`, which limits what does not poll.
#include "tools/interrupt.h"

#include "tools/exit_status.h"

#include "host/interrupt.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>

namespace tool {
namespace {

// Both are -1 where there is no pipe; then waits end by the interruption of the call alone.
int wakeReader = -1;
int wakeWriter = -1;
volatile std::sig_atomic_t caughtSignal = 0;
// How many InterruptGrace there are, and whether the alarm has been set for them.
std::atomic<int> graces = 0;
std::atomic<bool> alarmSet = false;
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);
constexpr unsigned graceSeconds = 2;

extern "C" void requestInterrupt(int number) {
    const int before = errno;
    caughtSignal = number;
    utInterruptState::SetInterruptPending(true);
    const char byte = 0;
    if (wakeWriter >= 0) [[maybe_unused]]
        const auto written = ::write(wakeWriter, &byte, 1);
    if (graces > 0) {
        alarmSet = true;
        ::alarm(graceSeconds);
    }
    errno = before;
}

// The signal that was caught has its usual effect by now, which ends the program.
extern "C" void endAtOnce(int) {
    if (graces > 0) std::raise(caughtSignal);
}

void openWakePipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return;
    wakeReader = ends[0];
    wakeWriter = ends[1];
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

bool waitFor(int descriptor, short event) {
    pollfd watched[2] = {{descriptor, event, 0}, {wakeReader, POLLIN, 0}};  // a negative one is not watched
    while (!interruptPending()) {
        const int ready = ::poll(watched, 2, -1);
        if (ready < 0 && errno != EINTR) return true;  // let the transfer tell what is wrong
        if (ready > 0 && watched[0].revents != 0) return !interruptPending();
    }
    return false;
}

}  // namespace

void catchInterrupts() {
    openWakePipe();
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) catchSignal(number);
    struct sigaction late {};
    late.sa_handler = endAtOnce;
    ::sigaction(SIGALRM, &late, nullptr);
    std::signal(SIGXFSZ, SIG_IGN);  // a file that grows too large is an error of the write
}

bool interruptPending() {
    return utInterruptState::IsInterruptPending();
}

int interruptStatus() {
    return caughtSignal == 0 ? exitTrouble : 128 + static_cast<int>(caughtSignal);
}

InterruptGrace::InterruptGrace() {
    ++graces;
}

InterruptGrace::~InterruptGrace() {
    if (--graces == 0 && alarmSet.exchange(false)) ::alarm(0);
}

bool waitForInput(int descriptor) {
    return waitFor(descriptor, POLLIN);
}

bool waitForOutput(int descriptor) {
    return waitFor(descriptor, POLLOUT);
}

}  // namespace tool
