// The chunks of scratch memory, newest first.
#include "regexp/base/scratch_memory.h"

#include <new>

RE_Scratch_Memory::~RE_Scratch_Memory() {
    while (newest != nullptr) {
        Chunk* const chunk = newest;
        newest = chunk->before;
        reRelease(chunk, chunkBytes);
    }
}

// What is left of the chunk before is lost, as blocks of any size have to fit.
void RE_Scratch_Memory::addChunk() {
    newest = ::new (reAllocate(chunkBytes)) Chunk{newest};
    next = reinterpret_cast<std::byte*>(newest + 1);
    end = reinterpret_cast<std::byte*>(newest) + chunkBytes;
}
