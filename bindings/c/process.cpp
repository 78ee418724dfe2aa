// What concerns the whole process: the interrupt flag, and the memory of the engine.
#include "bindings/c/guard.h"

#include "host/interrupt.h"
#include "host/memory_hook.h"

#include <memory>
#include <mutex>
#include <vector>

using namespace corvane_c;

namespace {

class Watch : public utAllocationHook {
public:
    explicit Watch(const cvre_memory_watch& given) : table(given) {}

    bool allow(std::size_t bytes) noexcept override {
        return table.allow == nullptr || table.allow(table.data, bytes) != 0;
    }
    void allocated() noexcept override {
        if (table.allocated != nullptr) {
            table.allocated(table.data);
        }
    }
    void freed() noexcept override {
        if (table.freed != nullptr) {
            table.freed(table.data);
        }
    }

private:
    cvre_memory_watch table;
};

}  // namespace

extern "C" {

void cvre_interrupt(int32_t pending) {
    utInterruptState::SetInterruptPending(pending != 0);
}

int32_t cvre_interrupt_pending(void) {
    return utInterruptState::IsInterruptPending() ? 1 : 0;
}

// A watch that was replaced may still be called by another thread: none is freed before the process ends.
cvre_status cvre_watch_memory(const cvre_memory_watch* watch) {
    return guarded([&] {
        static std::mutex changing;
        static std::vector<std::unique_ptr<Watch>>& all = *new std::vector<std::unique_ptr<Watch>>;
        const std::lock_guard lock(changing);
        if (watch == nullptr) {
            utSetAllocationHook(nullptr);
            return CVRE_OK;
        }
        all.push_back(std::make_unique<Watch>(structureAt(watch)));
        utSetAllocationHook(all.back().get());
        return CVRE_OK;
    });
}

}  // extern "C"
