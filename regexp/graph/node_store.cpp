// Chunks of growing size, in a list from the oldest to the newest.
#include "regexp/graph/node_store.h"

#include <algorithm>
#include <functional>
#include <new>

RE_Node_Store::~RE_Node_Store() {
    while (first != nullptr) {
        Chunk* const chunk = first;
        first = chunk->following;
        reRelease(chunk, chunk->bytes);
    }
}

// `std::less` orders pointers into different blocks as well, which `<` need not do.
bool RE_Node_Store::Chunk::holds(const RE_Node* node) const {
    const std::less<const void*> before;
    return !before(node, this) && before(node, reinterpret_cast<const std::byte*>(this) + bytes);
}

// Each chunk is a quarter as large as all before it together, within bounds, so that at most a fifth is left over
// however many nodes there are, and small patterns take small chunks.
void RE_Node_Store::addChunk(std::size_t leastBytes) {
    const std::size_t bytes = std::max(std::clamp(total / 4 / grain * grain, smallestChunk, largestChunk),
                                       leastBytes + sizeof(Chunk));
    Chunk* const chunk = ::new (reAllocate(bytes)) Chunk{nullptr, bytes};
    *link = chunk;
    link = &chunk->following;
    total += bytes;
    next = reinterpret_cast<std::byte*>(chunk + 1);
    end = reinterpret_cast<std::byte*>(chunk) + bytes;
}

// Nodes and chunks are in the same order, so one walk over both tells which chunks hold any.
void RE_Node_Store::keepChunksOf(std::span<RE_Node* const> nodes) noexcept {
    auto node = nodes.begin();
    for (Chunk** at = &first; *at != nullptr;) {
        Chunk* const chunk = *at;
        const auto past = std::find_if(node, nodes.end(), [&](RE_Node* it) { return !chunk->holds(it); });
        if (past == node) {
            *at = chunk->following;
            reRelease(chunk, chunk->bytes);
        } else {
            at = &chunk->following;
            node = past;
        }
    }
}
