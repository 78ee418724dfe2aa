// Memory of the nodes of one pattern.
#pragma once

#include "regexp/base/memory.h"

#include <cstddef>
#include <span>

class RE_Node;

/// Lays nodes one behind the other in a few chunks from the host. Does not destroy them.
class CORVANE_REGEXP_EXPORT RE_Node_Store {
public:
    RE_Node_Store() = default;
    ~RE_Node_Store();
    RE_Node_Store(const RE_Node_Store&) = delete;
    RE_Node_Store& operator=(const RE_Node_Store&) = delete;

    void* take(std::size_t bytes) {
        const std::size_t taken = (bytes + grain - 1) / grain * grain;
        if (static_cast<std::size_t>(end - next) < taken) {
            addChunk(taken);
        }
        std::byte* const place = next;
        next += taken;
        return place;
    }
    /// Gives back the chunks that hold none of these nodes, which are in the order in which they were made. No others are
    /// made from then on.
    void keepChunksOf(std::span<RE_Node* const> nodes) noexcept;

private:
    static constexpr std::size_t grain = alignof(std::max_align_t);
    static constexpr std::size_t smallestChunk = 1024;
    static constexpr std::size_t largestChunk = 32768;

    struct alignas(std::max_align_t) Chunk {
        Chunk* following;
        std::size_t bytes;

        bool holds(const RE_Node* node) const;
    };

    void addChunk(std::size_t leastBytes);

    std::byte* next = nullptr;
    std::byte* end = nullptr;
    std::size_t total = 0;
    Chunk* first = nullptr;
    Chunk** link = &first;  ///< where the next chunk is hung on
};
