// What the match loop tells while it runs. The loop is compiled twice: for an observer, and for nobody.
#pragma once

#include "regexp/inspect/observer.h"

/// Nobody watches: every call is empty and leaves no code behind.
struct RE_No_Watch {
    static constexpr bool watches = false;

    explicit RE_No_Watch(RE_Search_Info&) {}

    void begin(std::size_t) {}
    void stepped(const RE_Node*, std::size_t, bool) {}
    void popped() {}
    void resumed(const RE_Node*, std::size_t) {}
    void bodyEnded(const RE_Node*, std::size_t, bool) {}
};

/// Tells the observer of the search. What a node did to the stack of choices is read off the stack
/// afterwards.
class RE_Loop_Watch {
public:
    static constexpr bool watches = true;

    explicit RE_Loop_Watch(RE_Search_Info& info) : search(info) {}

    /// Something is about to happen at `pos`.
    void begin(std::size_t pos);
    void stepped(const RE_Node* node, std::size_t pos, bool matched);
    /// Choices were popped, among them those that only undo.
    void popped();
    /// The node whose choice was popped has taken it up.
    void resumed(const RE_Node* node, std::size_t pos);
    void bodyEnded(const RE_Node* node, std::size_t pos, bool completed);

private:
    void tell(RE_Trace_Kind kind, const RE_Node* node, std::size_t from, std::size_t to,
              bool succeeded) const;
    void tellStack(const RE_Node* node, std::size_t pos) const;

    RE_Search_Info& search;
    std::size_t from = 0;
    std::int32_t top = -1;
    std::uint64_t refusals = 0;
};
