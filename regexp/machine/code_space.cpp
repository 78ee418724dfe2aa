// Chunks that are mapped twice, and the stretches of them that are free.
#include "regexp/machine/code_space.h"

#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <list>
#include <map>
#include <memory>
#include <mutex>

struct RE_Code_Space::Chunk {
    Chunk() = default;
    Chunk(const Chunk&) = delete;
    Chunk& operator=(const Chunk&) = delete;
    ~Chunk() {
        for (std::byte* const view : {toWrite, toRun}) {
            if (view != nullptr) {
                munmap(view, size);
            }
        }
    }

    /// False where the system refuses.
    bool map(std::size_t bytes) {
        size = bytes;
        const int file = memfd_create("regexp code", MFD_CLOEXEC);
        if (file < 0) {
            return false;
        }
        if (ftruncate(file, static_cast<off_t>(size)) == 0) {
            toWrite = view(file, PROT_READ | PROT_WRITE);
            toRun = view(file, PROT_READ | PROT_EXEC);
        }
        close(file);  // the views keep the memory
        free.emplace(0, size);
        return toWrite != nullptr && toRun != nullptr;
    }

    std::byte* toWrite = nullptr;
    std::byte* toRun = nullptr;
    std::size_t size = 0;
    std::size_t used = 0;                     ///< bytes
    bool isShared = false;                    ///< with another process, by a fork
    std::map<std::size_t, std::size_t> free;  ///< offsets and bytes of what is free; no two touch

private:
    std::byte* view(int file, int protection) const {
        void* const address = mmap(nullptr, size, protection, MAP_SHARED, file, 0);
        return address != MAP_FAILED ? static_cast<std::byte*>(address) : nullptr;
    }
};

namespace {

using Chunk = RE_Code_Space::Chunk;

constexpr std::size_t grain = 64;  // a line of the cache
constexpr std::size_t chunkBytes = 256U << 10U;

class Arena {
public:
    Arena() {
        pthread_atfork([] { Arena::ofProcess().lock.lock(); }, [] { Arena::ofProcess().leaveShared(); },
                       [] { Arena::ofProcess().leaveShared(); });
    }

    /// Never destroyed: patterns of static storage may give back after everything else has gone.
    static Arena& ofProcess() {
        static Arena& arena = *new Arena;
        return arena;
    }

    /// The chunk and the offset of so many bytes, or null. First fit.
    std::pair<Chunk*, std::size_t> take(std::size_t bytes) {
        const std::scoped_lock held(lock);
        for (const std::unique_ptr<Chunk>& chunk : chunks) {
            const auto fits = [bytes](const auto& stretch) { return stretch.second >= bytes; };
            const auto found = chunk->isShared ? chunk->free.end() : std::ranges::find_if(chunk->free, fits);
            if (found != chunk->free.end()) {
                return {chunk.get(), cut(*chunk, found, bytes)};
            }
        }
        auto chunk = std::make_unique<Chunk>();
        if (!chunk->map(std::max(chunkBytes, (bytes + chunkBytes - 1) / chunkBytes * chunkBytes))) {
            return {nullptr, 0};
        }
        chunks.push_front(std::move(chunk));
        return {chunks.front().get(), cut(*chunks.front(), chunks.front()->free.begin(), bytes)};
    }

    void giveBack(Chunk& chunk, std::size_t offset, std::size_t bytes) {
        const std::scoped_lock held(lock);
        chunk.used -= bytes;
        if (chunk.used == 0 && (chunk.isShared || chunks.size() > 1)) {
            chunks.remove_if([&chunk](const auto& each) { return each.get() == &chunk; });
        } else if (!chunk.isShared) {
            join(chunk.free, offset, bytes);
        }
    }

private:
    using Stretches = std::map<std::size_t, std::size_t>;

    static std::size_t cut(Chunk& chunk, Stretches::iterator stretch, std::size_t bytes) {
        const auto [offset, size] = *stretch;
        chunk.free.erase(stretch);
        if (size > bytes) {
            chunk.free.emplace(offset + bytes, size - bytes);
        }
        chunk.used += bytes;
        return offset;
    }

    static void join(Stretches& free, std::size_t offset, std::size_t bytes) {
        auto after = free.lower_bound(offset);
        if (after != free.end() && after->first == offset + bytes) {
            bytes += after->second;
            after = free.erase(after);
        }
        if (after != free.begin()) {
            const auto before = std::prev(after);
            if (before->first + before->second == offset) {
                before->second += bytes;
                return;
            }
        }
        free.emplace(offset, bytes);
    }

    // In both processes after a fork, in which the lock is held.
    void leaveShared() {
        for (const std::unique_ptr<Chunk>& chunk : chunks) {
            chunk->isShared = true;
        }
        lock.unlock();
    }

    std::mutex lock;
    std::list<std::unique_ptr<Chunk>> chunks;
};

}  // namespace

RE_Code_Space RE_Code_Space::take(std::size_t bytes) {
    RE_Code_Space space;
    space.bytes = (bytes + grain - 1) / grain * grain;
    const auto [chunk, offset] = Arena::ofProcess().take(space.bytes);
    if (chunk != nullptr) {
        space.chunk = chunk;
        space.offset = offset;
        space.toWrite = chunk->toWrite + offset;
        space.toRun = chunk->toRun + offset;
    }
    return space;
}

RE_Code_Space::~RE_Code_Space() {
    if (chunk != nullptr) {
        Arena::ofProcess().giveBack(*chunk, offset, bytes);
    }
}
