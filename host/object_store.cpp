// Scoped object store. A store holds a handful of objects, so it is a vector searched under a lock.
//
// Objects are looked up by many threads and destroyed by one: the last utScope that shares the store. That
// thread has the store to itself, which is why the destructor takes no lock.

#include "host/object_store.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

namespace utScopedStore {

class Store {
public:
    Store() = default;
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    // Latest first, as the header promises. An entry leaves the list before its object is destroyed, so the
    // list never holds an object that is gone.
    ~Store() {
        while (!entries_.empty()) {
            const Entry last = entries_.back();
            entries_.pop_back();
            last.destroy(last.object);
        }
    }

    void* find(size_t id) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return findLocked(id);
    }

    void* findOrInsert(size_t id, void* object, Destroy destroy) {
        const std::lock_guard<std::mutex> lock(mutex_);
        // Find and insert are one step under the lock. Two threads that both miss an object make one each,
        // and the loser learns here that it has to discard its own.
        if (void* stored = findLocked(id)) return stored;
        entries_.push_back({id, object, destroy});
        return object;
    }

private:
    struct Entry {
        size_t id;
        void* object;
        Destroy destroy;
    };

    void* findLocked(size_t id) const {
        const auto entry =
            std::find_if(entries_.begin(), entries_.end(), [id](const Entry& e) { return e.id == id; });
        return entry == entries_.end() ? nullptr : entry->object;
    }

    std::mutex mutex_;
    std::vector<Entry> entries_;
};

namespace {

// Null outside of every scope. Not owned: the utScope that set it holds the store.
thread_local Store* activeStore = nullptr;

// The process store is made on first use and is destroyed with the other statics at exit.
Store& currentStore() {
    static Store processStore;
    return activeStore == nullptr ? processStore : *activeStore;
}

}  // namespace

bool isRequiredContextActive() noexcept {
    return activeStore != nullptr;
}

size_t getNextID() noexcept {
    static std::atomic<size_t> last{0};
    return ++last;
}

void* find(size_t id) {
    return currentStore().find(id);
}

void* findOrInsert(size_t id, void* object, Destroy destroy) {
    return currentStore().findOrInsert(id, object, destroy);
}

}  // namespace utScopedStore

utScope::utScope() : utScope(std::make_shared<utScopedStore::Store>()) {}

utScope::utScope(std::shared_ptr<utScopedStore::Store> store) noexcept
    : store_(std::move(store)), outer_(std::exchange(utScopedStore::activeStore, store_.get())) {}

utScope::~utScope() {
    utScopedStore::activeStore = outer_;
}
