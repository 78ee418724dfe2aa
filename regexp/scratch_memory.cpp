#include "regexp/scratch_memory.h"

#include <new>

RE_Scratch_Memory::~RE_Scratch_Memory() {
    while (newest != nullptr) {
        Chunk* const chunk = newest;
        newest = chunk->before;
        reRelease(chunk, chunkBytes);
    }
}

void* RE_Scratch_Memory::do_allocate(std::size_t bytes, std::size_t) {
    if (bytes > largest) {
        return reAllocate(bytes);
    }
    const std::size_t taken = inGrains(bytes);
    if (static_cast<std::size_t>(end - next) < taken) {
        addChunk();
    }
    std::byte* const block = next;
    next += taken;
    return block;
}

void RE_Scratch_Memory::do_deallocate(void* block, std::size_t bytes, std::size_t) {
    if (bytes > largest) {
        reRelease(block, bytes);
    } else if (static_cast<std::byte*>(block) + inGrains(bytes) == next) {
        next = static_cast<std::byte*>(block);
    }
}

// What is left of the chunk before is lost.
void RE_Scratch_Memory::addChunk() {
    newest = ::new (reAllocate(chunkBytes)) Chunk{newest};
    next = reinterpret_cast<std::byte*>(newest + 1);
    end = reinterpret_cast<std::byte*>(newest) + chunkBytes;
}
