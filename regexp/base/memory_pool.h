// Small blocks of memory that are used again before more is taken from the host.
//
// The standard library's pools do not fit: that of libstdc++ 12 carries on as if nothing had happened when
// the memory for its own lists is refused. This one hands out a block or throws, and stays usable
// when it throws.
//
// Not synchronised: a pool belongs to one search.
#pragma once

#include "regexp/base/memory.h"

#include <array>
#include <cstddef>
#include <memory_resource>
#include <vector>

/// Blocks of up to `largest` bytes come from chunks that are released together with the pool. Larger ones
/// come from the host and return to it one by one. A released block serves the next request of the same size
/// in grains; blocks are never merged or split, so a search that alternates between sizes keeps both.
class CORVANE_REGEXP_EXPORT RE_Memory_Pool final : public std::pmr::memory_resource {
public:
    static constexpr std::size_t largest = 512;

    RE_Memory_Pool() = default;
    ~RE_Memory_Pool() override;
    RE_Memory_Pool(const RE_Memory_Pool&) = delete;
    RE_Memory_Pool& operator=(const RE_Memory_Pool&) = delete;

    /// Bytes of the chunks. What is larger than a block is not counted.
    std::size_t bytes() const { return chunks.size() * chunkBytes; }

private:
    static constexpr std::size_t grain = alignof(std::max_align_t);
    static constexpr std::size_t chunkBytes = 4096;

    /// A free block holds the link to the next one of its size: lists take no memory of their own.
    struct Block {
        Block* next;
    };

    void* do_allocate(std::size_t bytes, std::size_t alignment) override;
    void do_deallocate(void* block, std::size_t bytes, std::size_t alignment) override;
    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override {
        return this == &other;
    }

    void* carve(std::size_t bytes);

    std::array<Block*, largest / grain + 1> free{};  ///< by size in grains
    std::vector<std::byte*, RE_Allocator<std::byte*>> chunks;
    std::byte* rest = nullptr;  ///< of the newest chunk
    std::byte* restEnd = nullptr;
};
