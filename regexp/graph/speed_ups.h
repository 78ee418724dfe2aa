// What makes searches of a pattern faster and is made once they have been enough work, or on request.
//
// The only part of a compiled pattern that changes while it is searched. Nothing in it changes what a search finds, so it
// does not matter to a search at which moment it changes.
#pragma once

#include "regexp/base/compile_limits.h"
#include "regexp/base/compile_meter.h"
#include "regexp/base/memory_account.h"
#include "regexp/graph/made_late.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

class RE_Dfa;
class RE_Machine_Code;

/// How much work the searches of a pattern have been. Additions of two threads at the same moment may lose one of them:
/// the sum only decides when something is worth making, and searches are not to wait for one another.
class RE_Search_Work {
public:
    /// Returns the new sum.
    std::uint64_t add(std::uint64_t more) noexcept {
        const std::uint64_t now = get() + more;
        sum.store(now, std::memory_order_relaxed);
        return now;
    }
    std::uint64_t get() const noexcept { return sum.load(std::memory_order_relaxed); }

private:
    std::atomic<std::uint64_t> sum{0};
};

/// What a part is made with.
struct RE_Making {
    RE_Compile_Meter& meter;
    std::uint64_t mostBytes;           ///< that it may hold
    std::uint64_t bytesOfMachine = 0;  ///< to be filled in: those that are not from the host
};

struct RE_Speed_Ups {
    RE_Made_Late<RE_Machine_Code> machineCode;  ///< of the program
    RE_Made_Late<RE_Dfa> dfa;
    RE_Search_Work steps;                 ///< of searches without machine code
    RE_Search_Work choices;               ///< of attempts that would have consulted the automaton
    std::atomic<std::uint64_t> bytes{0};  ///< of the host's memory

    /// What the limits of compiling leave for these. To be called before the pattern is searched.
    void limit(std::uint64_t mostWork, std::uint64_t mostMoreBytes) {
        work.store(mostWork, std::memory_order_relaxed);
        mostBytes = mostMoreBytes;
    }

    /// Has `make` (which takes an `RE_Making` and returns a `std::unique_ptr`) make what belongs into `place`, unless that was
    /// tried before. The memory is the pattern's, and no account of a search counts it. Null where there is none to be had.
    /// The monitor (may be null) is asked before, and several times a millisecond; where it says no, it may be tried again.
    template <class T, class Make>
    const T* obtain(RE_Made_Late<T>& place, RE_Compile_Monitor* monitor, Make make) {
        if (place.claim()) {
            const RE_Memory_Account::Apart uncounted;
            RE_Memory_Account account;
            const RE_Memory_Account::Scope scope(account);
            RE_Compile_Limits limits;
            limits.work = work.load(std::memory_order_relaxed);
            RE_Compile_Meter meter(&limits, monitor, false);
            RE_Making making{meter, roomLeft()};
            account.setCeiling(making.mostBytes);
            try {
                meter.ask();
                std::unique_ptr<const T> made = make(making);
                keep(place, std::move(made), account.held(), making.bytesOfMachine);
            } catch (const std::bad_alloc&) {
                // Searches go on without it.
            } catch (const RE_Compile_Stopped& stopped) {
                if (stopped.outcome != RE_Compile_Outcome::workSpent) {
                    place.reopen();
                }
            }
            if (limits.work != RE_Compile_Limits::unlimited) {
                work.store(limits.work - std::min(limits.work, meter.work()), std::memory_order_relaxed);
            }
        }
        return place.get();
    }

private:
    std::uint64_t roomLeft() const {
        const std::uint64_t taken =
            bytes.load(std::memory_order_relaxed) + machineBytes.load(std::memory_order_relaxed);
        return mostBytes == RE_Compile_Limits::unlimited ? mostBytes : mostBytes - std::min(mostBytes, taken);
    }
    /// Two threads may make the two parts at once: what does not fit beside the other one goes again.
    template <class T>
    void keep(RE_Made_Late<T>& place, std::unique_ptr<const T> made, std::uint64_t held,
              std::uint64_t ofMachine) {
        bytes.fetch_add(held, std::memory_order_relaxed);
        machineBytes.fetch_add(ofMachine, std::memory_order_relaxed);
        const std::uint64_t taken =
            bytes.load(std::memory_order_relaxed) + machineBytes.load(std::memory_order_relaxed);
        if (taken <= mostBytes) {
            place.publish(makeOpaque(std::move(made)));
        } else {
            bytes.fetch_sub(held, std::memory_order_relaxed);
            machineBytes.fetch_sub(ofMachine, std::memory_order_relaxed);
        }
    }

    std::atomic<std::uint64_t> machineBytes{0};  ///< of memory that is not the host's
    std::atomic<std::uint64_t> work{RE_Compile_Limits::unlimited};
    std::uint64_t mostBytes = RE_Compile_Limits::unlimited;
};
