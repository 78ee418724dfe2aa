// std::thread cannot choose its stack size, so this uses the thread library underneath. 128 KiB is what
// docs/guarantees.md promises to be enough.
#include "tests/support/small_stack.h"

#include <pthread.h>
#include <stdexcept>

namespace corvane_tests {
namespace {

// Sanitizers put large red zones into every frame and need more for the same depth.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr size_t kStackBytes = 1024 * 1024;
#else
constexpr size_t kStackBytes = 128 * 1024;
#endif

void* call(void* work) {
    (*static_cast<const std::function<void()>*>(work))();
    return nullptr;
}

}  // namespace

void runOnSmallStack(const std::function<void()>& work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kStackBytes);
    pthread_t thread;
    const int failed = pthread_create(&thread, &attributes, call, const_cast<std::function<void()>*>(&work));
    pthread_attr_destroy(&attributes);
    if (failed != 0) {
        throw std::runtime_error("no thread with a small stack");
    }
    pthread_join(thread, nullptr);
}

}  // namespace corvane_tests
