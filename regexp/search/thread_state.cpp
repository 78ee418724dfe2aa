// One state for each thread. It is taken out while it is in use, so that searches within a search find none.
#include "regexp/search/thread_state.h"

#include "regexp/graph/graph_facts.h"

#include <exception>
#include <memory>
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

RE_Thread_State::RE_Thread_State(const RE_Graph_Facts& facts, std::u16string_view subject, RE_Seek_Table* table,
                                 bool pollInterrupts, RE_Observer* observer)
    : exceptions(std::uncaught_exceptions()) {
    if (mayKeep(facts, observer)) {
        std::unique_ptr<RE_Search_Info> taken(takeOfThread());
        taken->useAgain(facts, subject.data(), subject.size(), table, pollInterrupts);
        state = taken.release();
    } else {
        state = &own.emplace(subject.data(), subject.size(), facts.tokenCount, table, pollInterrupts);
        state->prepare(facts);
        state->observer = observer;
        if (observer == nullptr) {
            state->beginInquiry();
        }
    }
    state->rejectEmpty = facts.refusesEmpty ? 1 : 0;
}

// After an exception the state is not known well enough.
RE_Thread_State::~RE_Thread_State() {
    if (own) {
        return;
    }
    std::unique_ptr<RE_Search_Info> taken(state);
    if (exceptions != std::uncaught_exceptions() || keptByThread != nullptr) {
        return;
    }
    state->putAside();
    if (state->heldBytes() <= mostKept) {
        keptByThread = taken.release();
    }
}

void RE_Thread_State::release() noexcept {
    delete std::exchange(keptByThread, nullptr);
}
