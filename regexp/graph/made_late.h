// A part of a compiled pattern that is made while searches may already be using the pattern.
//
// It goes from null to its value once and stays there until the pattern is destroyed. So a search that has read the
// pointer may use the object until it ends, and one that read null does without: both give the same answers.
#pragma once

#include "regexp/base/opaque.h"

#include <atomic>

/// Threads: every function but the destructor may be called by any number of threads at once. None of them waits.
template <class T>
class RE_Made_Late {
public:
    RE_Made_Late() = default;
    ~RE_Made_Late() {
        if (const T* const made = get()) {
            destroy(made);
        }
    }
    RE_Made_Late(const RE_Made_Late&) = delete;
    RE_Made_Late& operator=(const RE_Made_Late&) = delete;

    /// The object, or null as long as there is none.
    const T* get() const noexcept { return object.load(std::memory_order_acquire); }
    /// Whether there is none and nobody has tried to make it.
    bool isOpen() const noexcept { return !claimed.load(std::memory_order_relaxed); }
    /// True for one caller, who has to make the object.
    bool claim() noexcept { return isOpen() && !claimed.exchange(true, std::memory_order_relaxed); }
    /// For the one who has claimed it and was kept from making it: somebody else may try.
    void reopen() noexcept { claimed.store(false, std::memory_order_relaxed); }
    /// For the one who has claimed it. Null where it cannot be made; it is not tried again then.
    void publish(RE_Opaque<const T> made) noexcept {
        if (made != nullptr) {
            destroy = made.get_deleter().destroy;
            object.store(made.release(), std::memory_order_release);
        }
    }

private:
    std::atomic<const T*> object{nullptr};
    std::atomic<bool> claimed{false};
    void (*destroy)(const T*) = nullptr;  // written before the object is published, read when nobody searches
};
