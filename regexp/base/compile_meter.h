// Counts the work of compiling, and ends it where a limit is met or somebody asks for it.
//
// Whoever compiles calls `spend` in every loop over units, items, nodes or states. It costs a subtraction; the clock, the
// stop token, the host's flag and whoever else may end the work are looked at between two intervals.
#pragma once

#include "regexp/base/compile_limits.h"
#include "regexp/base/export.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

/// Thrown where compiling is not to go on. Whoever owns the meter catches it: it never leaves the engine.
struct RE_Compile_Stopped {
    RE_Compile_Outcome outcome;
};

/// Somebody besides limits and host who may end the work: the search that a text is compiled in.
class CORVANE_REGEXP_EXPORT RE_Compile_Monitor {
public:
    /// Told how much work was done since the last call. Returns `compiled` when it may go on.
    virtual RE_Compile_Outcome goesOn(std::uint64_t work) = 0;

protected:
    ~RE_Compile_Monitor() = default;
};

/// Not synchronised: one compilation, on one thread.
class CORVANE_REGEXP_EXPORT RE_Compile_Meter {
public:
    /// Without anybody to ask and without limits.
    RE_Compile_Meter() = default;
    /// The limits and the monitor (may be null) must outlive the meter. `asksHost`: the interrupt flag counts.
    RE_Compile_Meter(const RE_Compile_Limits* compileLimits, RE_Compile_Monitor* somebody, bool asksHost);
    RE_Compile_Meter(const RE_Compile_Meter&) = delete;
    RE_Compile_Meter& operator=(const RE_Compile_Meter&) = delete;

    /// Counts so much work. Throws `RE_Compile_Stopped`.
    void spend(std::uint64_t amount = 1) {
        left -= static_cast<std::int64_t>(amount);
        if (left < 0) {
            pass();
        }
    }
    /// Counts a node that is about to be made.
    void spendNode() {
        if (nodeCount++ >= mostNodes) {
            refuseNodes();
        }
        spend();
    }
    /// Looks at once at whoever may end the work, as after a call of the host.
    void ask();
    /// Tells the monitor of the rest of the work.
    void finish();
    /// Begins with a text. Throws where it has too many units: the place is the first one that is too many.
    void admit(const char16_t* text, std::size_t units);
    /// Notes a place in it, also for whoever reads a part of the text as one of its own.
    /// Of a place in another text, which stands for this one, nothing is made that could be used outside of this one.
    void workAt(const char16_t* where) {
        const std::uintptr_t bytes =
            reinterpret_cast<std::uintptr_t>(where) - reinterpret_cast<std::uintptr_t>(begin);
        place = std::min<std::size_t>(bytes / sizeof(char16_t), unitCount);
    }

    std::uint64_t work() const {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(granted) - left);
    }
    std::uint64_t nodes() const { return nodeCount; }

    std::size_t place = 0;  ///< index of the unit that is at work, for whoever is told that it was refused

private:
    /// So much work takes some hundred microseconds at most.
    static constexpr std::uint64_t interval = 1024;
    static constexpr std::uint64_t unasked = static_cast<std::uint64_t>(-1) >> 2;

    // Apart, as these are hardly ever called: each maker of nodes would have a copy.
    [[gnu::cold]] void pass();
    [[noreturn, gnu::cold]] static void refuseNodes();
    void grant(std::uint64_t spent);
    RE_Compile_Outcome askAll();

    std::int64_t left = static_cast<std::int64_t>(unasked);
    std::uint64_t granted = unasked;
    std::uint64_t nodeCount = 0;
    std::uint64_t mostNodes = RE_Compile_Limits::unlimited;
    const char16_t* begin = nullptr;
    std::size_t unitCount = 0;
    std::uint64_t told = 0;  ///< of the work, to the monitor
    const RE_Compile_Limits* limits = nullptr;
    RE_Compile_Monitor* monitor = nullptr;
    bool pollsHost = false;
};
