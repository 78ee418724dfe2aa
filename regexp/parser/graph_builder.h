// Turns a measured syntax tree into the node graph.
//
// The graph is built from left to right. `tail` is the link that will lead to the next node: to append a
// node is to store it there and to move on to its own next link. What is left to do lies on a work stack as
// small functions, the next one on top, so that building takes no recursion, however deeply a pattern
// nests.
//
// Invariants:
// * Between two steps everything before `tail` is complete, except links that a waiting step will set.
// * `scope` is the memo scope at `tail`: what the future of a match depends on there, besides the position.
//   A node that makes a choice takes it over when it is made, so it has to be right before that.
// * Nodes belong to the context from the start, so an exception in the middle leaves nothing to clean up
//   here.
//
// Must not optimise: the graph is the pattern as written, which the passes rewrite. The two exceptions are
// strings and runs made at once. What they are is defined by the passes, which make them where somebody
// observes the stages: the same nodes and links. Only numbers may differ, as a pass numbers strings and runs in
// the order in which it meets them, and a text of many nodes is passed later than a string. The exceptions save
// the time to make more first: without them 2,000 alternatives of a word take 9.1 ms to compile in place of
// 0.52, a row of counted groups 268 us in place of 169, a lexer of 60 alternatives 48 in place of 41, a literal
// of 15 units 1.1 in place of 0.66.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/graph/pattern_part.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/counters.h"
#include "regexp/nodes/loop_pass.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/parser/empty_passes.h"
#include "regexp/parser/measure.h"
#include "regexp/parser/parser_context.h"
#include "regexp/parser/syntax.h"

#include <cstddef>
#include <new>
#include <type_traits>
#include <vector>

/// A small function that waits for its turn: like `std::function`, but without memory of its own, as nearly
/// every group and loop of a pattern queues one. Copied byte by byte, never destroyed.
class RE_Build_Step {
public:
    /// What the function captures is trivially copyable: pointers, numbers and structures of such. No
    /// references into the stack of the step that queues it, which has returned by then.
    template <class Function>
    RE_Build_Step(const Function& function) : call(&callAs<Function>) {
        static_assert(std::is_trivially_copyable_v<Function> && std::is_trivially_destructible_v<Function>);
        static_assert(sizeof(Function) <= room && alignof(Function) <= alignof(std::max_align_t));
        new (storage) Function(function);
    }
    void operator()() { call(storage); }

private:
    /// The largest capture is a `Loop` and a plan beside `this`. One that is too large does not compile.
    static constexpr std::size_t room = 112;

    template <class Function>
    static void callAs(void* place) {
        (*std::launder(static_cast<Function*>(place)))();
    }

    void (*call)(void*);
    alignas(std::max_align_t) unsigned char storage[room];
};

/// Builds one graph. Context and tree must outlive it; the tree is only read.
class RE_Graph_Builder {
public:
    RE_Graph_Builder(RE_ParserContext& parserContext, const RE_Syntax_Tree& syntax)
        : context(parserContext), tree(syntax), work(&parserContext.scratch) {}

    /// Builds the whole graph and returns the root, a node that does nothing. Called once. Where
    /// `continuation` is not null, as for a text that is included in a pattern, the end leads on to it.
    RE_Node* build(RE_Node* continuation);

private:
    /// A step and what it makes nodes for, unless it says otherwise.
    struct Waiting {
        RE_Build_Step step;
        RE_Pattern_Part part;
    };

    /// The loop being built: what surrounds its body. Copied into the steps that finish it.
    struct Loop {
        std::uint32_t body;
        bool lazy;
        bool guarded;           ///< its body can be empty
        RE_Empty_Passes empty;  ///< what is done about required passes that are
        std::size_t pass;       ///< register of the current pass
        const RE_Memo_Scope* outerScope;
        RE_Node* exit;  ///< where the loop leads, when more than one way leads there
    };

    /// Runs `step` once everything that is queued after it has run. So what comes last is queued first, and
    /// `emit` last.
    void then(const RE_Build_Step& step) { work.push_back({step, part}); }
    /// From here on nodes are made for this part of the pattern.
    void workFor(const RE_Pattern_Part& stretch) {
        part = stretch;
        if (context.parts != nullptr) {
            context.parts->workFor(stretch);
        }
    }
    /// The same for an item. What is a part of another item is made for that.
    void workFor(const RE_Syntax& item) {
        if (item.end != 0) {
            workFor(RE_Pattern_Part{item.begin, item.end});
        }
    }
    void append(RE_Node* node);
    /// Ends the path at a node that is there already, and leaves `tail` to be set by the caller.
    void joinAt(RE_Node* node) { *tail = node; }

    // graph_builder.cpp: sequences, groups, atoms
    /// Builds the item at `tail`, now or as the next step. Always the last thing that a step does: what
    /// follows it in the code would run before it.
    void emit(std::uint32_t index);
    void emitNow(std::uint32_t index);
    void emitSequence(std::uint32_t child);
    void emitGroup(std::uint32_t group);
    void emitBranches(std::uint32_t branch, RE_Node* join, bool chained);
    void emitUnitRun(std::uint32_t branch, RE_Node* join);
    void emitCapture(std::uint32_t index);
    void emitText(const RE_Syntax& item);
    std::size_t emitJoined(const char16_t* units, std::size_t count);
    void emitReference(const RE_Syntax& item);
    template <class OfLines, class OfText>
    void emitAnchor(const RE_Syntax& item);
    RE_Node* makeDynamicNode(const RE_Syntax& item);
    const std::u16string& nameOf(const RE_Syntax& item) const;

    // closed_bodies.cpp: bodies whose choices are dropped, and the conditionals that depend on them
    void emitAtomic(std::uint32_t index);
    void emitLook(std::uint32_t index);
    void emitConditional(std::uint32_t index);
    void emitConditionalBranches(std::uint32_t index, RE_Fail* condition, bool negative);
    RE_Lookaround_Assertion* makeLook(std::uint32_t index);
    /// `end` (may be null) is where the end of the body is noted.
    void emitBody(std::uint32_t group, RE_Node** bodyLink, bool behind, RE_End_Of_Tree** end = nullptr);

    // repetition.cpp: loops, counters and copies
    void emitRepeat(std::uint32_t index);
    void emitLoop(std::uint32_t index);
    void emitRun(std::uint32_t index, const RE_Repeat_Plan& plan);
    Loop openLoop(std::uint32_t index, const RE_Repeat_Plan& plan);
    void emitOptional(Loop loop);
    void emitStar(Loop loop);
    void emitPlus(Loop loop);
    void emitCounted(Loop loop, const RE_Repeat_Plan& plan);
    void emitCopies(Loop loop, RE_Repeat_Plan plan);
    void emitOptionalCopies(const Loop& loop, std::uint64_t count);
    void enterPass(const Loop& loop, bool required);
    void leavePass(const Loop& loop);
    void enterBodyScope(const Loop& loop);
    RE_Fixed_Counter* makeFixedCounter(std::uint64_t passes);
    RE_Split* makeOptionalCounter(std::uint64_t passes, bool lazy);
    void appendStartCounter(RE_Counter* counter);

    /// A node whose records take part in the memo, under a row of its own and in the scope at `tail`.
    /// `guarded` vouches that no path returns to it without consuming a unit, so that the search need not
    /// look for that on the stack.
    template <class Choice, class... Arguments>
    Choice* makeChoice(Arguments&&... arguments) {
        Choice* const choice = context.make<Choice>(std::forward<Arguments>(arguments)...);
        choice->guarded = true;
        choice->memoised = true;
        choice->memoIndex = context.nextMemoRow();
        choice->memoScope = scope;
        return choice;
    }
    /// Adds a link to the scope. The result lives as long as the graph; it does not become the current
    /// scope by itself.
    const RE_Memo_Scope* innerScope(RE_Memo_Scope::Kind kind, const RE_Node* counter, std::size_t index);

    RE_ParserContext& context;
    const RE_Syntax_Tree& tree;
    RE_Scratch_List<Waiting> work;
    RE_Pattern_Part part;  ///< that nodes are made for now
    RE_Node** tail = nullptr;
    RE_Node* appended = nullptr;           ///< the last node that was appended
    std::size_t bodyDepth = 0;             ///< closed bodies around the place that is being built
    const RE_Memo_Scope* scope = nullptr;  ///< what the future depends on here, besides the position
};
