// Counted repetition.
//
// A loop with bounds is entered through an `RE_Start_Counter` for each of its counters, which opens a count
// level of their own, so that a loop entered again counts afresh. `RE_Fixed_Counter` counts the required
// passes: it leads into the body until its limit is reached and then straight on to its done node.
// `RE_Limit_Counter` (greedy) and `RE_Lazy_Counter` count the optional ones and leave a choice each time.
//
// Counts live in the search and are not trailed; what a pass changed is undone when the record that the
// counter left is popped. Trap: so every change of a count needs a record, also where there is no other way
// on.
#pragma once

#include "regexp/nodes/split.h"

/// Base of all whose records undo something, even if they offer no other way on.
class CORVANE_REGEXP_EXPORT RE_Counter : public RE_Split {
public:
    explicit RE_Counter(RE_Graph_Context& context) : RE_Split(context) { isCounter = true; }
    RE_Meaning meaning() const override;
};

/// Base of the counters that hold a count. `limit` is the highest count at which a pass may still begin, for
/// the fixed counter, and the greatest number of passes for the others. So the fixed counter makes one pass
/// more than its limit says.
class CORVANE_REGEXP_EXPORT RE_State_Counter : public RE_Counter {
public:
    RE_State_Counter(RE_Graph_Context& context, std::uint64_t highest)
        : RE_Counter(context), limit(highest) {}
    bool isStateCounter() const override { return true; }
    bool refusesRepeatAt(std::size_t depth) const override { return depth == 0; }

    std::uint64_t limit;
};

/// Base of the counters that count a pass before they enter the body, so that popping the record counts it
/// back.
class CORVANE_REGEXP_EXPORT RE_Greedy_Counter : public RE_State_Counter {
public:
    using RE_State_Counter::RE_State_Counter;
    void onBacktrack(RE_Search_Info& info) const override;

protected:
    /// Counts a pass and leaves a record of it; a dead end where this was tried before.
    bool beginPass(const char16_t* p, RE_Search_Info& info) const;
};

/// Counts the required passes. `nextNode` is the body; where a pass too many would begin it fails, and
/// continues at its done node.
class CORVANE_REGEXP_EXPORT RE_Fixed_Counter : public RE_Greedy_Counter {
public:
    using RE_Greedy_Counter::RE_Greedy_Counter;
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    void onBacktrack(RE_Search_Info& info) const override;
    RE_Node* failNode() const override { return doneNode; }
    bool isSkippable() const override { return doneNode == nullptr && skippable; }
    bool refusesRepeatAt(std::size_t) const override { return false; }
    RE_Meaning meaning() const override;
    void visitLinks(RE_Link_Visitor& visitor) override;
    std::string label() const override;

    RE_Node* doneNode = nullptr;
    /// With more passes left than so many for each unit up to the subject's end, and so many besides, the
    /// others would be empty and change nothing: they are counted without being made. 0 and 0: none is. The
    /// rule and its proof are in `parser/empty_passes.h`.
    std::uint64_t passesPerUnit = 0;
    std::uint64_t passesAtEnd = 0;

private:
    /// How many of `left` passes need not be made with `unitsLeft` units before the subject's end.
    std::uint64_t idlePasses(std::uint64_t left, std::size_t unitsLeft) const;
};

/// Counts the optional passes of a greedy loop. `nextNode` is the body, `alternative` the exit.
class CORVANE_REGEXP_EXPORT RE_Limit_Counter : public RE_Greedy_Counter {
public:
    using RE_Greedy_Counter::RE_Greedy_Counter;
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Node* failNode() const override { return alternative; }
    RE_Meaning meaning() const override;
    std::string label() const override;
};

class RE_Lazy_Decrementer;

/// Counts the optional passes of a lazy loop. `nextNode` is the exit, `alternative` the body: a pass is
/// counted when its record is resumed, that is when the exit has failed.
class CORVANE_REGEXP_EXPORT RE_Lazy_Counter : public RE_State_Counter {
public:
    using RE_State_Counter::RE_State_Counter;
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Node* failNode() const override { return nextNode; }
    RE_Meaning meaning() const override;
    void onBacktrack(RE_Search_Info& info) const override;
    void visitLinks(RE_Link_Visitor& visitor) override;
    std::string label() const override;

    RE_Node* decrementer = nullptr;
};

/// Its record drops a count level when backtracking passes back over the entry of the loop. Lies on the stack
/// only.
class CORVANE_REGEXP_EXPORT RE_Counter_Popper : public RE_Counter {
public:
    RE_Counter_Popper(RE_Graph_Context& context, const RE_Node* loopCounter)
        : RE_Counter(context), counter(loopCounter) {}
    void onBacktrack(RE_Search_Info& info) const override;
    bool pairsWith(const RE_Node* node) const override { return node == counter; }
    std::string label() const override { return "Counter popper"; }

    const RE_Node* counter;
};

/// Its record counts a lazy pass back. It lies below the record of the counter, which counts the pass when it
/// is resumed, so it is popped after everything that the pass has left.
class CORVANE_REGEXP_EXPORT RE_Lazy_Decrementer : public RE_Counter {
public:
    RE_Lazy_Decrementer(RE_Graph_Context& context, const RE_Node* loopCounter)
        : RE_Counter(context), counter(loopCounter) {}
    void onBacktrack(RE_Search_Info& info) const override;
    std::string label() const override { return "Lazy decrementer"; }

    const RE_Node* counter;
};

/// Entry of a counted loop: opens a level and leaves the record that drops it. One within a loop takes the
/// place of passes that need not be made one by one.
class CORVANE_REGEXP_EXPORT RE_Start_Counter : public RE_Node {
public:
    using RE_Node::RE_Node;
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    bool isSkippable() const override { return false; }
    bool isStartCounter() const override { return true; }
    RE_Meaning meaning() const override;
    void visitLinks(RE_Link_Visitor& visitor) override;
    std::string label() const override { return "Start Counter"; }

    RE_Node* popper = nullptr;         ///< an `RE_Counter_Popper`
    const RE_Node* counter = nullptr;  ///< the counter whose level this opens
    std::uint64_t count = 0;           ///< with which it opens: passes that are counted without being made
};
