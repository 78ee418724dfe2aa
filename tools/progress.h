// A line on the terminal that shows how far the search of a large text has come.
#pragma once

#include "tools/input.h"

#include <chrono>

namespace tool {

// Shows nothing unless standard error is a terminal and the text is large. Known positions are the matches,
// so a long stretch without one shows no movement.
class Progress {
public:
    explicit Progress(const Input& input);
    ~Progress() { hide(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Draws at most a few times a second.
    void at(std::size_t position);

    // Takes the line away; to be called before anything else is written to the terminal.
    void hide();

private:
    using Clock = std::chrono::steady_clock;

    // The text that is searched, which outlives the line.
    const Input& input_;
    bool wanted_;
    bool visible_ = false;
    // Not before this moment; the beginning of time draws at once.
    Clock::time_point nextDraw_{};
};

}  // namespace tool
