// The search state that a thread keeps from one search to the next.
//
// A search by itself, as `RE_Tree::match` is one, needs a state for its tokens, choices and memo. To make one and to fill it
// with memory would cost more than most searches of short texts do.
//
// Invariant: a search with a state that was kept takes the steps and gives the results of one with a fresh state. What is
// not certain to be as in a fresh one is not kept: states of patterns that call the host or count what they do, and those
// of nodes that were made by hand.
#pragma once

#include "regexp/state/search_info.h"

#include <cstddef>
#include <optional>
#include <string_view>

class RE_Observer;

/// The state of one search: the thread's, or one of its own where that is in use, as in a search that a host's callback
/// makes, and while an account of the thread counts, so that what it counts does not depend on searches that came before.
/// Ready for the pattern, whose facts must outlive it; the subject as well.
class RE_Thread_State {
public:
    /// The observer may be null. Without memory for tokens the state has none.
    RE_Thread_State(const RE_Graph_Facts& facts, std::u16string_view subject, RE_Seek_Table* table,
                    bool pollInterrupts, RE_Observer* observer = nullptr);
    ~RE_Thread_State() {
        if (kept != nullptr) {
            handBack();
        }
    }
    RE_Thread_State(const RE_Thread_State&) = delete;
    RE_Thread_State& operator=(const RE_Thread_State&) = delete;

    RE_Search_Info& info() { return *state; }
    /// The search is over: the thread keeps the state, unless it holds much. Not to be called after an exception, which
    /// leaves the state as it was somewhere within the search: then it is freed.
    void keep() { isComplete = true; }

    /// Gives back what the calling thread keeps.
    static void release() noexcept;

private:
    /// A state that holds more is not kept, in bytes.
    static constexpr std::size_t mostKept = 4U << 20U;

    void handBack() noexcept;

    RE_Search_Info* kept;   // that of the thread, or null
    RE_Search_Info* state;  // that, or the own one
    bool isComplete = false;
    std::optional<RE_Search_Info> own;
};
