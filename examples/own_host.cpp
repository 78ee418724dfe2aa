// A host for a program with its own allocator, ASCII text and no sessions.
#include "host/allocation.h"
#include "host/code_page.h"
#include "host/i18n.h"
#include "host/interrupt.h"
#include "host/object_store.h"
#include "host/unit_class.h"
#include "host/utf16.h"
#include "regexp/regexp.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <string>

// --- memory ---

void* utMalloc(size_t size) {
    return std::malloc(std::max<size_t>(size, 1));
}
void* utMallocWithCheck(size_t size) {
    void* const block = utMalloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
void* utCallocWithCheck(size_t count, size_t size) {
    void* const block = std::calloc(std::max<size_t>(count, 1), std::max<size_t>(size, 1));
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
void* utReallocWithCheck(void* block, size_t size) {
    void* const moved = std::realloc(block, std::max<size_t>(size, 1));
    if (moved == nullptr) {
        throw std::bad_alloc();
    }
    return moved;
}
void utFree(void* block) noexcept {
    std::free(block);
}

// --- units ---

bool cvu_isdigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}
bool cvu_isupper(char16_t unit) {
    return unit >= u'A' && unit <= u'Z';
}
bool cvu_islower(char16_t unit) {
    return unit >= u'a' && unit <= u'z';
}
bool cvu_isalnum(char16_t unit) {
    return cvu_isdigit(unit) || cvu_isupper(unit) || cvu_islower(unit);
}
bool cvu_isspace(char16_t unit) {
    return unit == u' ' || (unit >= 9 && unit <= 13);
}
char16_t cvu_tolower(char16_t unit) {
    return cvu_isupper(unit) ? static_cast<char16_t>(unit + 32) : unit;
}
char16_t cvu_toupper(char16_t unit) {
    return cvu_islower(unit) ? static_cast<char16_t>(unit - 32) : unit;
}

int utf16_strcmp(const char16_t* left, const char16_t* right) {
    while (*left != 0 && *left == *right) {
        ++left, ++right;
    }
    return int{*left} - int{*right};
}

// --- narrow text: each char is one unit ---

char16_t* lcp_to_utf16(const char* text, size_t count, size_t* length) {
    auto* const units = static_cast<char16_t*>(utMallocWithCheck((count + 1) * sizeof(char16_t)));
    std::transform(text, text + count, units, [](char c) { return static_cast<unsigned char>(c); });
    units[count] = 0;
    if (length != nullptr) {
        *length = count;
    }
    return units;
}
char16_t* lcp_to_utf16(const char* text, size_t* length) {
    return lcp_to_utf16(text, text != nullptr ? std::strlen(text) : 0, length);
}
char* utf16_to_lcp_n(const char16_t* text, size_t count, size_t* length) {
    auto* const narrow = static_cast<char*>(utMallocWithCheck(count + 1));
    std::transform(text, text + count, narrow,
                   [](char16_t unit) { return unit < 256 ? static_cast<char>(unit) : '?'; });
    narrow[count] = '\0';
    if (length != nullptr) {
        *length = count;
    }
    return narrow;
}
std::u16string to_ustring(const char* text) {
    return {text, text + std::strlen(text)};
}

// --- interrupts ---

namespace {
std::atomic<bool> pending{false};
}
bool utInterruptState::IsInterruptPending() noexcept {
    return pending.load(std::memory_order_relaxed);
}
void utInterruptState::SetInterruptPending(bool value) noexcept {
    pending.store(value, std::memory_order_relaxed);
}

// --- the object store: one for the process ---

namespace {
std::mutex guard;
std::map<size_t, std::unique_ptr<void, utScopedStore::Destroy>> objects;
std::atomic<size_t> lastId{0};
}  // namespace
bool utScopedStore::isRequiredContextActive() noexcept {
    return true;
}
size_t utScopedStore::getNextID() noexcept {
    return ++lastId;
}
void* utScopedStore::find(size_t id) {
    const std::lock_guard lock(guard);
    const auto found = objects.find(id);
    return found != objects.end() ? found->second.get() : nullptr;
}
void* utScopedStore::findOrInsert(size_t id, void* object, Destroy destroy) {
    const std::lock_guard lock(guard);
    auto& stored = objects.try_emplace(id, nullptr, destroy).first->second;
    if (stored == nullptr) {
        stored.reset(object);
    }
    return stored.get();
}

// --- the program ---

int main() {
    const RE_Tree tree("(?<name>\\w+) holmes", true);
    const std::unique_ptr<RE_Results> match(tree.match("Mr. Sherlock Holmes", 0));
    std::printf("[%zu,%zu]\n", match->matchStart, match->matchLength);
    std::printf("%s\n", RE_Replace("$<name>").replace("Mr. Sherlock Holmes", tree, false, 0).c_str());
    const std::u16string quoted = RE_Translate::escape(u"a.b");
    std::printf("%s\n", std::string(quoted.begin(), quoted.end()).c_str());
}
