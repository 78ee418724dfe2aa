// Counts the memory that the engine takes on one thread, and refuses it beyond a ceiling.
//
// The engine's allocators are without state, so that containers cost nothing for it; the account that is open
// on the thread is found through a thread-local pointer. Everything allocated and freed while a scope is open
// counts, by the sizes asked for: the sums are the same on every machine with words of one size.
#pragma once

#include "regexp/base/export.h"

#include <cstddef>
#include <cstdint>
#include <new>

/// Thrown where the ceiling of an account would be passed. A limited search turns it into its outcome.
class CORVANE_REGEXP_EXPORT RE_Ceiling_Reached : public std::bad_alloc {
public:
    const char* what() const noexcept override;
};

/// Not synchronised: an account belongs to the thread that opened it.
class CORVANE_REGEXP_EXPORT RE_Memory_Account {
public:
    static constexpr std::uint64_t unlimited = static_cast<std::uint64_t>(-1);

    /// The account counts while this lives. Scopes nest: what one counts, those around it count too.
    class CORVANE_REGEXP_EXPORT Scope {
    public:
        explicit Scope(RE_Memory_Account& account) noexcept;
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        RE_Memory_Account& opened;
    };

    /// What is held already may lie above it.
    void setCeiling(std::uint64_t mostBytes) { ceiling = mostBytes; }
    bool isOver() const { return bytesHeld > ceiling; }

    /// Bytes taken less bytes given back. What was taken before may be given back here: never below zero.
    std::uint64_t held() const { return bytesHeld; }
    std::uint64_t peak() const { return bytesAtPeak; }

    /// Tells the open accounts; false, and nothing is counted, when one of them refuses.
    static bool take(std::size_t bytes) noexcept;
    static void give(std::size_t bytes) noexcept;

private:
    bool admits(std::size_t bytes) const;

    RE_Memory_Account* outer = nullptr;
    std::uint64_t ceiling = unlimited;
    std::uint64_t bytesHeld = 0;
    std::uint64_t bytesAtPeak = 0;
};

// The host's allocation, told to the open accounts. The checked form throws, the other one returns null.
CORVANE_REGEXP_EXPORT void* reAllocate(std::size_t bytes);
CORVANE_REGEXP_EXPORT void* reTryAllocate(std::size_t bytes) noexcept;
CORVANE_REGEXP_EXPORT void reRelease(void* block, std::size_t bytes) noexcept;
