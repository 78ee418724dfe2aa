// The accounts that are open on the thread, as a list from the innermost to the outermost, and the
// allocations that they count.
#include "regexp/base/memory_account.h"

#include "host/allocation.h"

#include <algorithm>
#include <utility>

namespace {

// Read at each allocation: this model of thread-local storage needs no call to find it, also in a shared
// library.
[[gnu::tls_model("initial-exec")]] thread_local constinit RE_Memory_Account* innermost = nullptr;

}  // namespace

const char* RE_Ceiling_Reached::what() const noexcept {
    return "the search has reached its memory ceiling";
}

RE_Memory_Account::Scope::Scope(RE_Memory_Account& account) noexcept : opened(account) {
    account.outer = std::exchange(innermost, &account);
}

RE_Memory_Account::Scope::~Scope() {
    innermost = std::exchange(opened.outer, nullptr);
}

RE_Memory_Account::Apart::Apart() noexcept : open(std::exchange(innermost, nullptr)) {}

RE_Memory_Account::Apart::~Apart() {
    innermost = open;
}

bool RE_Memory_Account::isOpen() noexcept {
    return innermost != nullptr;
}

// `ceiling - held` cannot wrap around: what is held may lie above.
bool RE_Memory_Account::admits(std::size_t bytes) const {
    return bytes <= ceiling - std::min(ceiling, bytesHeld);
}

// Two rounds, so that a refusal leaves no trace in the accounts that were tried before.
bool RE_Memory_Account::take(std::size_t bytes) noexcept {
    for (const RE_Memory_Account* account = innermost; account != nullptr; account = account->outer) {
        if (!account->admits(bytes)) {
            return false;
        }
    }
    for (RE_Memory_Account* account = innermost; account != nullptr; account = account->outer) {
        account->bytesHeld += bytes;
        account->bytesAtPeak = std::max(account->bytesAtPeak, account->bytesHeld);
    }
    return true;
}

void RE_Memory_Account::give(std::size_t bytes) noexcept {
    for (RE_Memory_Account* account = innermost; account != nullptr; account = account->outer) {
        account->bytesHeld -= std::min<std::uint64_t>(account->bytesHeld, bytes);
    }
}

// Counted first: a ceiling refuses without troubling the host.
void* reAllocate(std::size_t bytes) {
    if (!RE_Memory_Account::take(bytes)) {
        throw RE_Ceiling_Reached();
    }
    try {
        return utMallocWithCheck(bytes);
    } catch (...) {
        RE_Memory_Account::give(bytes);
        throw;
    }
}

void* reTryAllocate(std::size_t bytes) noexcept {
    if (!RE_Memory_Account::take(bytes)) {
        return nullptr;
    }
    void* const block = utMalloc(bytes);
    if (block == nullptr) {
        RE_Memory_Account::give(bytes);
    }
    return block;
}

void reRelease(void* block, std::size_t bytes) noexcept {
    if (block != nullptr) {
        RE_Memory_Account::give(bytes);
        utFree(block);
    }
}
