// Standard output in the order of the searches. Written with the system call: a signal must be able to end a write that
// waits for a reader, and nothing may be held back that belongs to a line which is complete.
#include "tools/search/output.h"

#include "tools/interrupt.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <system_error>

namespace tool {

OrderedOutput::OrderedOutput(int descriptor) : descriptor_(descriptor) {
    struct stat status;
    isPipe_ = ::fstat(descriptor, &status) == 0 && !S_ISREG(status.st_mode);
}

OrderedOutput::Held& OrderedOutput::held(std::size_t number) {
    while (ahead_.size() <= number - current_) ahead_.emplace_back();
    return ahead_[number - current_];
}

void OrderedOutput::write(std::size_t number, std::string_view text) {
    std::unique_lock lock(mutex_);
    if (number != current_) {
        std::string& waiting = held(number).text;
        if (waiting.size() + text.size() <= mostHeld) {
            waiting += text;
            return;
        }
        turn_.wait(lock, [&] { return number == current_ || abandoned_; });
        if (abandoned_) return;
        const std::string before = std::move(held(number).text);
        held(number).text.clear();
        writeThrough(before);
    }
    writeThrough(text);
}

void OrderedOutput::close(std::size_t number) {
    const std::lock_guard lock(mutex_);
    held(number).closed = true;
    if (number != current_) return;
    // Those that have finished, and what the next one has written up to now. After a failure a number may be missing.
    while (!ahead_.empty() && ahead_.front().closed) {
        ahead_.pop_front();
        ++current_;
        if (ahead_.empty()) break;
        const std::string text = std::move(ahead_.front().text);
        ahead_.front().text.clear();
        if (!abandoned_) writeThrough(text);
    }
    turn_.notify_all();
}

void OrderedOutput::abandon() {
    const std::lock_guard lock(mutex_);
    abandoned_ = true;
    turn_.notify_all();
}

// Where a signal may end a write half-way, that is of whole lines and of no more than is written at once or not at all.
// Only a line that is longer can be cut.
std::string_view OrderedOutput::pieceOf(std::string_view text) const {
    if (!isPipe_ || text.size() <= PIPE_BUF) return text;
    const std::size_t end = text.rfind('\n', PIPE_BUF - 1);
    return text.substr(
        0, end == std::string_view::npos ? std::min(text.find('\n'), text.size() - 1) + 1 : end + 1);
}

void OrderedOutput::writeThrough(std::string_view text) {
    while (!text.empty()) {
        const std::string_view piece = pieceOf(text);
        if (isPipe_ && !waitForOutput(descriptor_)) throw Interrupted();
        const ssize_t written = ::write(descriptor_, piece.data(), piece.size());
        if (written < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "cannot write to standard output");
        if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace tool
