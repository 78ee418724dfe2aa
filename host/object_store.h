// Objects shared by everything that runs in one host scope, for instance one session of an application that
// keeps several apart. A scope owns a store; a thread works in the innermost scope it has entered, and
// several threads may share one. Outside every scope a store for the whole process serves.
//
//     utScope session;                              // a new store, current on this thread
//     std::thread worker([&] { utScope joined(session.store()); ... });  // the same store on another thread

#pragma once

#include <cstddef>
#include <memory>

#include "host/export.h"

namespace utScopedStore {

using Destroy = void (*)(void* object);

class Store;

// Whether the calling thread is inside a scope.
CORVANE_HOST_EXPORT bool isRequiredContextActive() noexcept;

// A fresh key for one kind of object, the same in every store. Never 0.
CORVANE_HOST_EXPORT size_t getNextID() noexcept;

// The current store's object for the key; null when there is none.
CORVANE_HOST_EXPORT void* find(size_t id);

// Stores `object` unless the key has one already, and returns the stored one. The store owns `object` only if
// that is what it returns; otherwise, also when it throws, the object stays the caller's.
CORVANE_HOST_EXPORT void* findOrInsert(size_t id, void* object, Destroy destroy);

}  // namespace utScopedStore

// Enters a scope on the constructing thread and leaves it on destruction. Scopes of a thread nest like
// blocks. The store's objects are destroyed, latest first, when the last utScope that shares it is gone.
class CORVANE_HOST_EXPORT utScope {
public:
    // A scope with a store of its own.
    utScope();
    // A scope that shares the store of another one.
    explicit utScope(std::shared_ptr<utScopedStore::Store> store) noexcept;
    ~utScope();
    utScope(const utScope&) = delete;
    utScope& operator=(const utScope&) = delete;

    const std::shared_ptr<utScopedStore::Store>& store() const noexcept { return store_; }

private:
    std::shared_ptr<utScopedStore::Store> store_;
    utScopedStore::Store* outer_;
};
