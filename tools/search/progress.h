// A line on the terminal that shows how far a long search has come.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>

namespace tool {

// Shows nothing unless standard error is a terminal and the search takes long. Safe to call from many threads.
class Progress {
public:
    // `sharesTerminal`: the output is on a terminal, too, on which the two would be mixed up once something was found; then
    // the line is there only until then.
    explicit Progress(bool sharesTerminal);
    ~Progress() { hide(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // So many bytes more are to be searched, as far as it is known.
    void expect(std::uint64_t bytes) { expected_ += bytes; }
    // So many bytes more were searched. Draws at most a few times a second.
    void advance(std::uint64_t bytes);
    // Takes the line away; to be called before anything else is written to the terminal.
    void hide();

private:
    using Clock = std::chrono::steady_clock;

    void draw();

    bool wanted_;
    std::atomic<std::uint64_t> expected_ = 0;
    std::atomic<std::uint64_t> done_ = 0;
    std::mutex mutex_;
    std::atomic<bool> visible_ = false;
    Clock::time_point begin_ = Clock::now();
    std::atomic<Clock::rep> nextDraw_;
};

}  // namespace tool
