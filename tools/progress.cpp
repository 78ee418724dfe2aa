// A line on the terminal that shows how far the search of a large text has come. It is drawn over itself: a
// carriage return and the sequence that clears the line.
#include "tools/progress.h"

#include <unistd.h>

#include <cstdio>

namespace tool {
namespace {

constexpr std::size_t largeText =
    std::size_t{32} * 1024 * 1024;  // bytes; smaller texts are usually done before anyone looks
constexpr double bytesPerMegabyte = 1e6;

}  // namespace

// Drawn at once, since the first match may be long in coming.
Progress::Progress(const Input& input)
    : input_(input), wanted_(input.byteSize >= largeText && ::isatty(STDERR_FILENO) != 0) {
    at(0);
}

void Progress::at(std::size_t position) {
    if (!wanted_) return;
    const Clock::time_point now = Clock::now();
    if (now < nextDraw_) return;
    // Of the units, applied to the bytes: people know the size of the file, and both grow together.
    const double part = static_cast<double>(position) / static_cast<double>(input_.text.view().size());
    const double megabytes = static_cast<double>(input_.byteSize) / bytesPerMegabyte;
    std::fprintf(stderr, "\r\033[K%s: %.1f of %.1f MB (%.0f%%)", input_.label.c_str(), part * megabytes,
                 megabytes, part * 100);
    std::fflush(stderr);
    visible_ = true;
    // Ten times a second at most: a million matches must not become a million lines.
    nextDraw_ = now + std::chrono::milliseconds(100);
}

// Leaves the terminal as it would be without the line.
void Progress::hide() {
    if (!visible_) return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    visible_ = false;
}

}  // namespace tool
