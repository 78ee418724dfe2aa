// Counts the work of a search in steps, and spends its budget.
//
// A step is one node visited, or `unitsAStep` units scanned. Both are properties of pattern, subject and
// compile options alone: the count is the same on every machine, in every build, however fast the scans are
// written. The match loop pays for one decrement; everything else happens at checkpoints.
//
// Invariant: steps taken = granted - left. `left` may become negative, as a scan is counted after it was
// made; those steps are taken all the same, and the next checkpoint comes at once.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

class RE_Step_Meter {
public:
    static constexpr std::uint64_t unlimited = static_cast<std::uint64_t>(-1);
    static constexpr std::size_t unitsAStep = 64;
    /// Steps from one checkpoint to the next.
    static constexpr std::uint64_t interval = 0x10000;

    /// Bounds the sum of the steps by `most`. What was taken before counts.
    void setBudget(std::uint64_t most) {
        const std::uint64_t spent = taken();
        budget = most;
        grant(spent);
    }
    /// Takes a step. False where a checkpoint is due first: then nothing was taken.
    bool step() {
        if (--left >= 0) {
            return true;
        }
        ++left;
        return false;
    }
    /// Whether so many steps can be taken before the next checkpoint, as long as nothing is scanned.
    bool hasRoom(std::int64_t steps) const { return left >= steps; }
    /// How many there are. Whoever takes steps on their own account, as programs and machine code do, hands
    /// back what is left.
    std::int64_t room() const { return left; }
    void setRoom(std::int64_t steps) { left = steps; }
    /// Counts a step that needs no permission.
    void count() { --left; }
    /// Counts a scan after the fact, in whole steps: a scan of less than `unitsAStep` units is free.
    void scanned(std::size_t units) { left -= static_cast<std::int64_t>(units / unitsAStep); }
    std::uint64_t taken() const {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(granted) - left);
    }
    /// Whether the budget is used up. Only a checkpoint has to look.
    bool isSpent() const { return taken() >= budget; }
    /// Makes room for steps up to the next checkpoint.
    void renew() { grant(taken()); }

private:
    // Never more than an interval, and never more than the budget: it is met exactly, without a test in
    // `step`.
    void grant(std::uint64_t spent) {
        const std::uint64_t more = std::min(interval, budget - std::min(budget, spent));
        granted = spent + more;
        left = static_cast<std::int64_t>(more);
    }

    std::int64_t left = interval;  // the first: machine code counts it, too
    std::uint64_t granted = interval;
    std::uint64_t budget = unlimited;
};
