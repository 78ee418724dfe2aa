// Files on their way from the walk to the threads that search them.
#pragma once

#include "tools/search/file_parts.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tool {

struct SearchTask {
    std::string path;
    bool isWalked;                 // a walk has come by it; otherwise it was named
    std::optional<FilePart> part;  // not the whole file
    std::size_t number = 0;        // in the order of the output
};

// Handing over a file at a time would cost more than the search of a small file.
using SearchTasks = std::vector<SearchTask>;

// Safe to call from many threads.
class TaskQueue {
public:
    // `room`: as many lists wait at most.
    explicit TaskQueue(std::size_t room) : room_(room) {}

    // Waits for room. False when the queue is closed.
    bool push(SearchTasks task) {
        std::unique_lock lock(mutex_);
        hasRoom_.wait(lock, [this] { return tasks_.size() < room_ || closed_; });
        if (closed_) return false;
        tasks_.push_back(std::move(task));
        hasTask_.notify_one();
        return true;
    }

    // Waits for a task. Nothing when the queue is closed and all were taken.
    std::optional<SearchTasks> take() {
        std::unique_lock lock(mutex_);
        hasTask_.wait(lock, [this] { return !tasks_.empty() || closed_; });
        if (tasks_.empty()) return std::nullopt;
        SearchTasks task = std::move(tasks_.front());
        tasks_.pop_front();
        hasRoom_.notify_one();
        return task;
    }

    void close() {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        hasTask_.notify_all();
        hasRoom_.notify_all();
    }

private:
    std::size_t room_;
    std::mutex mutex_;
    std::condition_variable hasTask_;
    std::condition_variable hasRoom_;
    std::deque<SearchTasks> tasks_;
    bool closed_ = false;
};

}  // namespace tool
