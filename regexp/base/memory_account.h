// Counts the memory that the engine takes on one thread, and refuses what would pass a ceiling.
//
// The engine's allocators are without state, so that containers cost nothing for it; the account that is open
// on the thread is found through a thread-local pointer. Everything allocated and freed while a scope is open
// counts, by the sizes requested: the sums are the same on every machine with words of one size.
//
// Invariant: a block counts where it is taken and where it is released, and these may be different accounts.
// So `held` is what this account has seen, not what a data structure owns, and never goes below zero.
#pragma once

#include "regexp/base/export.h"

#include <cstddef>
#include <cstdint>
#include <new>

/// Thrown where the ceiling of an account would be passed. A limited search turns it into its outcome, so
/// that it never leaves the engine.
class CORVANE_REGEXP_EXPORT RE_Ceiling_Reached : public std::bad_alloc {
public:
    const char* what() const noexcept override;
};

/// Not synchronised: an account belongs to the thread that has opened it.
class CORVANE_REGEXP_EXPORT RE_Memory_Account {
public:
    static constexpr std::uint64_t unlimited = static_cast<std::uint64_t>(-1);

    /// The account counts while this lives. Scopes nest like blocks: what one counts, those around it count
    /// too. A scope must be closed by the thread that has opened it.
    class CORVANE_REGEXP_EXPORT Scope {
    public:
        explicit Scope(RE_Memory_Account& account) noexcept;
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        RE_Memory_Account& opened;
    };

    /// While this lives, no account of the thread counts, for memory that belongs to none of them. Scopes opened within
    /// count as if they were the outermost.
    class CORVANE_REGEXP_EXPORT Apart {
    public:
        Apart() noexcept;
        ~Apart();
        Apart(const Apart&) = delete;
        Apart& operator=(const Apart&) = delete;

    private:
        RE_Memory_Account* open;
    };
    /// Whether an account of this thread counts.
    static bool isOpen() noexcept;

    /// What is held already may lie above the ceiling: then nothing more is admitted.
    void setCeiling(std::uint64_t mostBytes) { ceiling = mostBytes; }
    bool isOver() const { return bytesHeld > ceiling; }

    /// Bytes taken less bytes released. What was taken before may be released here: never below zero.
    std::uint64_t held() const { return bytesHeld; }
    std::uint64_t peak() const { return bytesAtPeak; }

    /// Counts `bytes` on all open accounts, or on none of them: false when one of them refuses.
    static bool take(std::size_t bytes) noexcept;
    static void give(std::size_t bytes) noexcept;

private:
    bool admits(std::size_t bytes) const;

    RE_Memory_Account* outer = nullptr;
    std::uint64_t ceiling = unlimited;
    std::uint64_t bytesHeld = 0;
    std::uint64_t bytesAtPeak = 0;
};

// The host's allocation, counted on the open accounts. The checked form throws, the other one returns null.
CORVANE_REGEXP_EXPORT void* reAllocate(std::size_t bytes);
CORVANE_REGEXP_EXPORT void* reTryAllocate(std::size_t bytes) noexcept;
CORVANE_REGEXP_EXPORT void reRelease(void* block, std::size_t bytes) noexcept;
