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

bool RE_Node_Store::Chunk::holds(const RE_Node* node) const {
    const std::less<const void*> before;
    return !before(node, this) && before(node, reinterpret_cast<const std::byte*>(this) + bytes);
}

// Each is half as large as all before, so that little is left over however many nodes there are.
void RE_Node_Store::addChunk(std::size_t leastBytes) {
    const std::size_t bytes = std::max(std::clamp(total / 2 / grain * grain, smallestChunk, largestChunk),
                                       leastBytes + sizeof(Chunk));
    Chunk* const chunk = ::new (reAllocate(bytes)) Chunk{nullptr, bytes};
    *link = chunk;
    link = &chunk->following;
    total += bytes;
    next = reinterpret_cast<std::byte*>(chunk + 1);
    end = reinterpret_cast<std::byte*>(chunk) + bytes;
}

void RE_Node_Store::keepChunksOf(std::span<RE_Node* const> nodes) noexcept {
    auto node = nodes.begin();
    for (Chunk** at = &first; *at != nullptr;) {
        Chunk* const chunk = *at;
        const auto behind = std::find_if(node, nodes.end(), [&](RE_Node* it) { return !chunk->holds(it); });
        if (behind == node) {
            *at = chunk->following;
            reRelease(chunk, chunk->bytes);
        } else {
            at = &chunk->following;
            node = behind;
        }
    }
}
