// A small function that waits for its turn while a graph is built: like `std::function`, but without memory of its own.
#pragma once

#include <cstddef>
#include <new>
#include <type_traits>

class RE_Build_Step {
public:
    /// What the function captures is no more than pointers, numbers and structures of such.
    template <class Function>
    RE_Build_Step(const Function& function) : call(&callAs<Function>) {
        static_assert(std::is_trivially_copyable_v<Function> && std::is_trivially_destructible_v<Function>);
        static_assert(sizeof(Function) <= room && alignof(Function) <= alignof(std::max_align_t));
        new (storage) Function(function);
    }
    void operator()() { call(storage); }

private:
    static constexpr std::size_t room = 112;

    template <class Function>
    static void callAs(void* place) {
        (*std::launder(static_cast<Function*>(place)))();
    }

    void (*call)(void*);
    alignas(std::max_align_t) unsigned char storage[room];
};
