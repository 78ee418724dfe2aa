// One state for each thread. It is taken out while it is in use, so that searches within a search find none.
#include "regexp/search/thread_state.h"

#include "regexp/graph/graph_facts.h"
#include "regexp/search/search.h"

#include <utility>

namespace {

// A plain pointer, so that taking the state needs no test whether it has been made.
[[gnu::tls_model("initial-exec")]] constinit thread_local RE_Search_Info* keptByThread = nullptr;

/// Frees what a thread has kept when it ends.
struct Thread_End {
    ~Thread_End() { RE_Thread_State::release(); }
};

bool mayKeep(const RE_Graph_Facts& facts, const RE_Observer* observer) {
    return observer == nullptr && !facts.hasDynamicNodes && facts.profiler == nullptr &&
           !RE_Memory_Account::isOpen();
}

/// The thread's state, or a new one that is to be the thread's.
RE_Search_Info* takeOfThread() {
    if (RE_Search_Info* const kept = std::exchange(keptByThread, nullptr)) {
        return kept;
    }
    static thread_local const Thread_End atEnd;
    static_cast<void>(atEnd);
    return new RE_Search_Info(u"", 0, 0, nullptr, false);
}

}  // namespace

RE_Thread_State::RE_Thread_State(const RE_Graph_Facts& facts, std::u16string_view subject,
                                 RE_Seek_Table* table, bool pollInterrupts, RE_Observer* observer)
    : kept(mayKeep(facts, observer) ? takeOfThread() : nullptr), state(kept) {
    if (kept != nullptr) {
        try {
            kept->useAgain(facts, subject.data(), subject.size(), table, pollInterrupts);
            kept->rejectEmpty = facts.refusesEmpty ? 1 : 0;
        } catch (...) {
            delete kept;
            throw;
        }
    } else {
        state = &own.emplace(subject.data(), subject.size(), facts.tokenCount, table, pollInterrupts);
        state->observer = observer;
        makeReady(*state, facts, observer == nullptr);
    }
}

void RE_Thread_State::handBack() noexcept {
    if (isComplete && keptByThread == nullptr) {
        kept->putAside();
        if (kept->heldBytes() <= mostKept) {
            keptByThread = kept;
            return;
        }
    }
    delete kept;
}

void RE_Thread_State::release() noexcept {
    delete std::exchange(keptByThread, nullptr);
}
