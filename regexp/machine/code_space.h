// Executable memory for the code of all patterns.
//
// A page or more for each pattern would cost calls of the system, page faults and places in the processor's caches of
// pages; so the code of many patterns shares chunks. A chunk is one piece of memory that is mapped twice, once to be
// written and once to be executed: no address is both at any time, and code can be added while other code of the chunk
// runs.
//
// After a fork both processes share the chunks that there were. Neither may write there any more: what one of them frees
// the other may be executing. So each begins a chunk of its own.
#pragma once

#include <cstddef>
#include <utility>

/// A stretch of that memory, given back when the object goes. Any thread may take and give back.
class RE_Code_Space {
public:
    RE_Code_Space() = default;
    /// Without addresses where the system gives no memory that may be executed.
    static RE_Code_Space take(std::size_t bytes);
    RE_Code_Space(RE_Code_Space&& other) noexcept
        : chunk(std::exchange(other.chunk, nullptr)),
          offset(other.offset),
          bytes(other.bytes),
          toWrite(other.toWrite),
          toRun(other.toRun) {}
    RE_Code_Space& operator=(RE_Code_Space&&) = delete;
    ~RE_Code_Space();

    explicit operator bool() const { return chunk != nullptr; }
    /// The same memory at its two addresses, which are multiples of 64.
    std::byte* writable() const { return toWrite; }
    const std::byte* executable() const { return toRun; }

    struct Chunk;

private:
    Chunk* chunk = nullptr;
    std::size_t offset = 0;
    std::size_t bytes = 0;
    std::byte* toWrite = nullptr;
    const std::byte* toRun = nullptr;
};
