// A list of plain values, the first few of which are within the object, so that small lists allocate nothing.
#pragma once

#include "regexp/base/memory.h"

#include <cstddef>
#include <cstring>
#include <type_traits>

/// Grows by doubling in the host's memory and never shrinks. What throws for lack of memory leaves the list as it was.
///
/// Trap: a pointer into a list ends when the list grows, and when it is moved.
template <class T, std::size_t InlineCount>
class RE_Inline_List {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    RE_Inline_List() = default;
    explicit RE_Inline_List(std::size_t size) { resize(size); }
    RE_Inline_List(const RE_Inline_List& other) { assign(other.begin(), other.end()); }
    RE_Inline_List(RE_Inline_List&& other) noexcept { take(other); }
    RE_Inline_List& operator=(const RE_Inline_List& other) {
        if (this != &other) {
            assign(other.begin(), other.end());
        }
        return *this;
    }
    RE_Inline_List& operator=(RE_Inline_List&& other) noexcept {
        if (this != &other) {
            release();
            take(other);
        }
        return *this;
    }
    ~RE_Inline_List() { release(); }

    std::size_t size() const { return count; }
    std::size_t capacity() const { return room; }
    bool empty() const { return count == 0; }
    T* data() { return outside != nullptr ? outside : within(); }
    const T* data() const { return const_cast<RE_Inline_List*>(this)->data(); }
    T* begin() { return data(); }
    const T* begin() const { return data(); }
    T* end() { return data() + count; }
    const T* end() const { return data() + count; }
    T& operator[](std::size_t index) { return data()[index]; }
    const T& operator[](std::size_t index) const { return data()[index]; }
    T& back() { return data()[count - 1]; }
    const T& back() const { return data()[count - 1]; }

    void clear() { count = 0; }
    void pop_back() { --count; }
    void push_back(const T& value) { insert(count, value); }
    /// Those from `index` on move up by one. The value may be one of the list.
    void insert(std::size_t index, const T& value) {
        const T copy = value;
        reserve(count + 1);
        T* const place = data() + index;
        std::memmove(static_cast<void*>(place + 1), place, (count - index) * sizeof(T));
        new (place) T(copy);
        ++count;
    }
    void resize(std::size_t size) { resize(size, T()); }
    void resize(std::size_t size, const T& value) {
        reserve(size);
        for (; count < size; ++count) {
            new (data() + count) T(value);
        }
        count = size;
    }
    /// Of values that are not in the list.
    template <class Iterator>
    void assign(Iterator first, Iterator last) {
        reserve(static_cast<std::size_t>(last - first));
        count = 0;
        for (; first != last; ++first, ++count) {
            new (data() + count) T(*first);
        }
    }

private:
    T* within() { return reinterpret_cast<T*>(inside); }

    void reserve(std::size_t size) {
        if (size > room) {
            grow(size > room * 2 ? size : room * 2);
        }
    }

    [[gnu::noinline]] void grow(std::size_t size) {
        T* const larger = RE_Allocator<T>().allocate(size);
        std::memcpy(static_cast<void*>(larger), data(), count * sizeof(T));
        release();
        outside = larger;
        room = size;
    }

    void release() noexcept {
        if (outside != nullptr) {
            RE_Allocator<T>().deallocate(outside, room);
            outside = nullptr;
            room = InlineCount;
        }
    }

    /// Of another list, which is empty afterwards. This one has nothing outside.
    void take(RE_Inline_List& other) noexcept {
        outside = other.outside;
        room = other.room;
        count = other.count;
        if (outside == nullptr) {
            std::memcpy(static_cast<void*>(inside), other.inside, count * sizeof(T));
        }
        other.outside = nullptr;
        other.room = InlineCount;
        other.count = 0;
    }

    T* outside = nullptr;  ///< where the values are once there are too many for `inside`
    std::size_t count = 0;
    std::size_t room = InlineCount;
    alignas(T) std::byte inside[InlineCount * sizeof(T)];
};
