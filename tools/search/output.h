// Standard output, written by several searches at once and read as if one had followed the other.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>

namespace tool {

// Each search has a number; what they write appears in the order of the numbers. Numbers are taken in ascending order
// without gaps, and each is closed. The search whose turn it is writes through; one that is ahead waits for its turn when it
// has written much. Safe to call from many threads, each with numbers of its own.
class OrderedOutput {
public:
    explicit OrderedOutput(int descriptor);

    // Text that ends with a line end. Throws std::system_error when it cannot be written, and Interrupted.
    void write(std::size_t number, std::string_view text);
    // Nothing more comes from this search.
    void close(std::size_t number);
    // After a failure: nobody waits for anybody any more.
    void abandon();

private:
    struct Held {
        std::string text;
        bool closed = false;
    };
    static constexpr std::size_t mostHeld = std::size_t{1} << 20;

    Held& held(std::size_t number);
    void writeThrough(std::string_view text);
    std::string_view pieceOf(std::string_view text) const;

    int descriptor_;
    bool isPipe_ = false;  // or a terminal, where a write may wait
    std::mutex mutex_;
    std::condition_variable turn_;
    std::size_t current_ = 0;
    std::deque<Held> ahead_;  // of the numbers from `current_` on
    bool abandoned_ = false;
};

// What one search prints. Collects lines and hands them on in large pieces; nothing is handed on at the destructor, as a
// search that failed must not print half a line.
class LineOutput {
public:
    LineOutput(OrderedOutput& output, std::size_t number) : output_(output), number_(number) {}

    std::string& text() { return text_; }
    // To be called between lines.
    void flushIfLarge() {
        if (text_.size() >= largeText) flush();
    }
    void flush() {
        if (!text_.empty()) output_.write(number_, text_);
        text_.clear();
    }

private:
    static constexpr std::size_t largeText = 65536;

    OrderedOutput& output_;
    std::size_t number_;
    std::string text_;
};

}  // namespace tool
