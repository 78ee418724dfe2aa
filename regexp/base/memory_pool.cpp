// Free lists by size, and the carving of chunks.
#include "regexp/base/memory_pool.h"

#include <new>

RE_Memory_Pool::~RE_Memory_Pool() {
    for (std::byte* const chunk : chunks) {
        reRelease(chunk, chunkBytes);
    }
}

// The alignment requested is at most that of a grain, and every block begins at a multiple of one.
void* RE_Memory_Pool::do_allocate(std::size_t bytes, std::size_t) {
    if (bytes > largest) {
        return reAllocate(bytes);
    }
    const std::size_t grains = (bytes + grain - 1) / grain;
    if (Block* const block = free[grains]) {
        free[grains] = block->next;
        return block;
    }
    return carve(grains * grain);
}

void RE_Memory_Pool::do_deallocate(void* block, std::size_t bytes, std::size_t) {
    if (bytes > largest) {
        reRelease(block, bytes);
        return;
    }
    Block*& list = free[(bytes + grain - 1) / grain];
    list = ::new (block) Block{list};
}

// Cuts a block off the newest chunk. What is left of a chunk that is too short is lost until the pool goes:
// at most `largest` bytes of each.
void* RE_Memory_Pool::carve(std::size_t bytes) {
    if (static_cast<std::size_t>(restEnd - rest) < bytes) {
        // The entry comes first, as either of the two may be refused: a chunk without an entry would leak, an
        // entry without a chunk is null, and releasing null does nothing.
        chunks.push_back(nullptr);
        rest = chunks.back() = static_cast<std::byte*>(reAllocate(chunkBytes));
        restEnd = rest + chunkBytes;
    }
    std::byte* const block = rest;
    rest += bytes;
    return block;
}
