// What ends work from outside, whatever that work is: a request to stop, and a deadline. Searches and compiling have
// them in common, each among limits of its own.
#pragma once

#include <chrono>
#include <cstdint>
#include <stop_token>

struct RE_Outside_Limits {
    using Time = std::chrono::steady_clock::time_point;
    /// Of a limit that is a number.
    static constexpr std::uint64_t unlimited = static_cast<std::uint64_t>(-1);
    static constexpr Time noDeadline = Time::max();

    enum class Verdict { goOn, cancelled, late };

    /// Whether there is anything to ask for.
    static bool mayEnd(const std::stop_token& stop, Time deadline) {
        return stop.stop_possible() || deadline != noDeadline;
    }
    /// Reads the clock only where there is a deadline.
    static Verdict ask(const std::stop_token& stop, Time deadline) {
        if (stop.stop_requested()) {
            return Verdict::cancelled;
        }
        const bool isLate = deadline != noDeadline && std::chrono::steady_clock::now() >= deadline;
        return isLate ? Verdict::late : Verdict::goOn;
    }
};
