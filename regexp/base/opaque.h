// Ownership of objects whose class only their maker knows.
//
// A lower floor may hold what a higher one makes, such as the compiled pattern its machine code. It destroys the object
// without its definition: the deleter is bound where the class is complete.
#pragma once

#include <memory>

template <class T>
struct RE_Bound_Delete {
    void (*destroy)(const T*) = nullptr;
    void operator()(const T* object) const { destroy(object); }
};

template <class T>
using RE_Opaque = std::unique_ptr<T, RE_Bound_Delete<T>>;

/// Hands an object over to an owner that does not know its class. Null stays null.
template <class T>
RE_Opaque<T> makeOpaque(std::unique_ptr<T> object) {
    return RE_Opaque<T>(object.release(), {[](const T* known) { delete known; }});
}
