// Memory of what lives no longer than one piece of work: the lists of a compilation.
#pragma once

#include "regexp/memory.h"

#include <cstddef>
#include <memory_resource>

/// Lays blocks one behind the other, first within itself, then within chunks from the host that are given back with it.
/// A block that is given back before others are taken makes room again. Large blocks go straight to the host and back.
class RE_Scratch_Memory final : public std::pmr::memory_resource {
public:
    RE_Scratch_Memory() = default;
    ~RE_Scratch_Memory() override;
    RE_Scratch_Memory(const RE_Scratch_Memory&) = delete;
    RE_Scratch_Memory& operator=(const RE_Scratch_Memory&) = delete;

private:
    static constexpr std::size_t grain = alignof(std::max_align_t);
    static constexpr std::size_t ownBytes = 8192;
    static constexpr std::size_t chunkBytes = 16384;
    static constexpr std::size_t largest = 4096;

    struct alignas(std::max_align_t) Chunk {
        Chunk* before;
    };

    static std::size_t inGrains(std::size_t bytes) { return (bytes + grain - 1) / grain * grain; }
    void* do_allocate(std::size_t bytes, std::size_t alignment) override;
    void do_deallocate(void* block, std::size_t bytes, std::size_t alignment) override;
    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override {
        return this == &other;
    }
    void addChunk();

    std::byte* next = own;
    std::byte* end = own + ownBytes;
    Chunk* newest = nullptr;
    alignas(std::max_align_t) std::byte own[ownBytes];
};
