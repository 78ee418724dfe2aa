// Memory of what lives no longer than one piece of work: the lists of a compilation.
//
// A stack of blocks without headers. Lists that are made and dropped in order cost an addition each, and a
// small pattern is compiled without a call to the host.
#pragma once

#include "regexp/base/memory.h"

#include <array>
#include <cstddef>
#include <functional>
#include <memory_resource>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

/// Lays blocks out one after another, first within itself, then within chunks from the host that are released
/// with it.
///
/// The block on top becomes room again when it is released; others are kept by their sizes for those who take as much: what a
/// list leaves while it grows and others are made on top of it is not lost. Large blocks come from the host and return to it.
/// Not synchronised, and not to be moved: blocks lie within the object.
class CORVANE_REGEXP_EXPORT RE_Scratch_Memory final : public std::pmr::memory_resource {
public:
    RE_Scratch_Memory() = default;
    ~RE_Scratch_Memory() override;
    RE_Scratch_Memory(const RE_Scratch_Memory&) = delete;
    RE_Scratch_Memory& operator=(const RE_Scratch_Memory&) = delete;

    void* take(std::size_t bytes) {
        const std::size_t taken = inGrains(bytes);
        if (bytes > largest) {
            return reAllocate(bytes);
        }
        if (Block*& list = released[taken / grain]; list != nullptr) {
            return std::exchange(list, list->following);
        }
        if (static_cast<std::size_t>(end - next) < taken) {
            addChunk();
        }
        return std::exchange(next, next + taken);
    }
    /// `bytes` must be the size that was taken: it decides whether the block is on top, and whose it is.
    void giveBack(void* block, std::size_t bytes) noexcept {
        if (bytes > largest) {
            reRelease(block, bytes);
        } else if (static_cast<std::byte*>(block) + inGrains(bytes) == next) {
            next = static_cast<std::byte*>(block);
        } else if (bytes != 0) {
            Block*& list = released[inGrains(bytes) / grain];
            list = ::new (block) Block{list};
        }
    }

private:
    static constexpr std::size_t grain = alignof(std::max_align_t);
    // Enough for the lists of nearly all patterns. The object mostly lives on the native stack, which bounds
    // it.
    static constexpr std::size_t ownBytes = 8192;
    static constexpr std::size_t chunkBytes = 16384;
    static constexpr std::size_t largest = 4096;

    struct alignas(std::max_align_t) Chunk {
        Chunk* before;
    };

    struct Block {
        Block* following;
    };

    static std::size_t inGrains(std::size_t bytes) { return (bytes + grain - 1) / grain * grain; }
    void addChunk();
    void* do_allocate(std::size_t bytes, std::size_t) override { return take(bytes); }
    void do_deallocate(void* block, std::size_t bytes, std::size_t) override { giveBack(block, bytes); }
    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override {
        return this == &other;
    }

    std::byte* next = own;
    std::byte* end = own + ownBytes;
    Chunk* newest = nullptr;
    std::array<Block*, largest / grain + 1> released{};  ///< by size in grains
    alignas(std::max_align_t) std::byte own[ownBytes];
};

/// Standard allocator over scratch memory, without virtual calls.
template <class T>
class RE_Scratch_Allocator {
public:
    using value_type = T;

    RE_Scratch_Allocator(RE_Scratch_Memory* scratch) noexcept : memory(scratch) {}
    template <class U>
    RE_Scratch_Allocator(const RE_Scratch_Allocator<U>& other) noexcept : memory(other.memory) {}

    T* allocate(std::size_t count) {
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        return static_cast<T*>(memory->take(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) noexcept { memory->giveBack(block, count * sizeof(T)); }

    template <class U>
    bool operator==(const RE_Scratch_Allocator<U>& other) const noexcept {
        return memory == other.memory;
    }

private:
    template <class U>
    friend class RE_Scratch_Allocator;

    RE_Scratch_Memory* memory;
};

template <class T>
using RE_Scratch_List = std::vector<T, RE_Scratch_Allocator<T>>;
template <class Key, class Value>
using RE_Scratch_Map = std::unordered_map<Key, Value, std::hash<Key>, std::equal_to<Key>,
                                          RE_Scratch_Allocator<std::pair<const Key, Value>>>;
template <class Key, class Value>
using RE_Scratch_Multimap = std::unordered_multimap<Key, Value, std::hash<Key>, std::equal_to<Key>,
                                                    RE_Scratch_Allocator<std::pair<const Key, Value>>>;
