// A line on the terminal that is drawn over itself: a carriage return and the sequence that clears the line.
#include "tools/search/progress.h"

#include <unistd.h>

#include <cstdio>

namespace tool {
namespace {

using std::chrono::milliseconds;
// Most searches are done before anyone looks.
constexpr milliseconds quietTime{500};
constexpr milliseconds redrawTime{100};

double megabytes(std::uint64_t bytes) {
    return static_cast<double>(bytes) / 1e6;
}

}  // namespace

Progress::Progress(bool sharesTerminal)
    : wanted_(::isatty(STDERR_FILENO) != 0 && !sharesTerminal),
      nextDraw_((begin_ + quietTime).time_since_epoch().count()) {}

void Progress::advance(std::uint64_t bytes) {
    done_ += bytes;
    if (!wanted_) return;
    const Clock::time_point now = Clock::now();
    if (now.time_since_epoch().count() < nextDraw_) return;
    const std::lock_guard lock(mutex_);
    nextDraw_ = (now + redrawTime).time_since_epoch().count();
    draw();
}

void Progress::draw() {
    const double seconds = std::chrono::duration<double>(Clock::now() - begin_).count();
    const double speed = megabytes(done_) / seconds;
    if (expected_ > done_) {
        std::fprintf(stderr, "\r\033[K%.0f of %.0f MB (%.0f%%), %.0f MB/s", megabytes(done_),
                     megabytes(expected_), 100 * static_cast<double>(done_) / static_cast<double>(expected_),
                     speed);
    } else {
        std::fprintf(stderr, "\r\033[K%.0f MB, %.0f MB/s", megabytes(done_), speed);
    }
    std::fflush(stderr);
    visible_ = true;
}

// Leaves the terminal as it would be without the line.
void Progress::hide() {
    if (!visible_) return;
    const std::lock_guard lock(mutex_);
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    visible_ = false;
}

}  // namespace tool
