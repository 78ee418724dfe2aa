// A line on the terminal that shows how far the search of a large text has come.
#include "tools/progress.h"

#include <unistd.h>

#include <cstdio>

namespace tool {
namespace {

constexpr std::size_t largeText =
    std::size_t{32} * 1024 * 1024;  // bytes; smaller texts are usually done before anyone looks
constexpr double bytesPerMegabyte = 1e6;

}  // namespace

Progress::Progress(const Input& input)
    : input_(input), wanted_(input.byteSize >= largeText && ::isatty(STDERR_FILENO) != 0) {
    at(0);
}

void Progress::at(std::size_t position) {
    if (!wanted_) return;
    const Clock::time_point now = Clock::now();
    if (now < nextDraw_) return;
    const double part = static_cast<double>(position) / static_cast<double>(input_.text.view().size());
    const double megabytes = static_cast<double>(input_.byteSize) / bytesPerMegabyte;
    std::fprintf(stderr, "\r\033[K%s: %.1f of %.1f MB (%.0f%%)", input_.label.c_str(), part * megabytes,
                 megabytes, part * 100);
    std::fflush(stderr);
    visible_ = true;
    nextDraw_ = now + std::chrono::milliseconds(100);
}

void Progress::hide() {
    if (!visible_) return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    visible_ = false;
}

}  // namespace tool
