// What makes searches of a pattern faster and is made once they have been enough work, or on request.
//
// The only part of a compiled pattern that changes while it is searched. Nothing in it changes what a search finds, so it
// does not matter to a search at which moment it changes.
#pragma once

#include "regexp/base/memory_account.h"
#include "regexp/graph/made_late.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <new>

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

struct RE_Speed_Ups {
    RE_Made_Late<RE_Machine_Code> machineCode;  ///< of the program
    RE_Made_Late<RE_Dfa> dfa;
    RE_Search_Work steps;                 ///< of searches without machine code
    RE_Search_Work choices;               ///< of attempts that would have consulted the automaton
    std::atomic<std::uint64_t> bytes{0};  ///< of the host's memory

    /// Has `make` (which returns a `std::unique_ptr`) make what belongs into `place`, unless that was tried before. The
    /// memory is the pattern's, and no account of a search counts it. Null where there is none to be had.
    template <class T, class Make>
    const T* obtain(RE_Made_Late<T>& place, Make make) {
        if (place.claim()) {
            const RE_Memory_Account::Apart uncounted;
            RE_Memory_Account account;
            const RE_Memory_Account::Scope scope(account);
            try {
                place.publish(makeOpaque(std::unique_ptr<const T>(make())));
            } catch (const std::bad_alloc&) {
                // Searches go on without it.
            }
            bytes.fetch_add(account.held(), std::memory_order_relaxed);
        }
        return place.get();
    }
};
