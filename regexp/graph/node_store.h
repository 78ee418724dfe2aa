// Memory of the nodes of one pattern: laid out in the order in which they are made, so that nodes that follow
// each other in the graph are mostly neighbours in memory, and released together.
//
// The store knows blocks, not nodes: whoever owns it has destroyed the nodes before.
#pragma once

#include "regexp/base/memory.h"

#include <cstddef>
#include <span>

class RE_Node;

/// Lays nodes out one after another in a few chunks from the host. Does not destroy them.
class CORVANE_REGEXP_EXPORT RE_Node_Store {
public:
    RE_Node_Store() = default;
    ~RE_Node_Store();
    RE_Node_Store(const RE_Node_Store&) = delete;
    RE_Node_Store& operator=(const RE_Node_Store&) = delete;

    /// A block for one node. Throws what the host's checked allocation throws; nothing is lost then.
    void* take(std::size_t bytes) {
        const std::size_t taken = (bytes + grain - 1) / grain * grain;
        if (static_cast<std::size_t>(end - next) < taken) {
            addChunk(taken);
        }
        std::byte* const place = next;
        next += taken;
        return place;
    }
    /// Releases the chunks that hold none of these nodes, which are in the order in which they were made.
    /// Nothing may be taken afterwards, as the newest chunk may be gone. Linear in the nodes and chunks.
    void keepChunksOf(std::span<RE_Node* const> nodes) noexcept;

private:
    static constexpr std::size_t grain = alignof(std::max_align_t);
    static constexpr std::size_t smallestChunk = 512;
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
