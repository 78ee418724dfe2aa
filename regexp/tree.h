// The compiled pattern and its search.
#pragma once

#include "regexp/base/flags.h"
#include "regexp/base/memory.h"
#include "regexp/base/search_report.h"
#include "regexp/graph/stage.h"
#include "regexp/state/results.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace RE_Builder_Space {
class RE_Builder;
}
class RE_Context;
class RE_Match_Sequence;
class RE_Match_Range;
class RE_Node;
class RE_Observer;
class RE_Search_Info;
class RE_Seek_Table;
struct RE_Graph_Attributes;
struct RE_Graph_Facts;
struct RE_Profile;
struct RE_Search_Limits;
struct RE_Sub_Pattern_Place;
struct RE_Tuning;

/// A compiled pattern. Compiling never fails on syntax: problems are reported through `RE_Context::warn` and
/// degrade to literal text or to nothing.
///
/// Immutable once constructed, but for the pointers by which it becomes faster; any number of threads may search one
/// tree at the same time, each with a seek table of its own where it passes one. Offsets and lengths count UTF-16 code
/// units.
///
///     RE_Tree tree(u"a(b+)c", false);
///     std::unique_ptr<RE_Results> match(tree.match(u"xxabbc", 6, 0));
///     // start 2, length 4; token 0 at 3, length 2
class CORVANE_REGEXP_EXPORT RE_Tree : public RE_Memory {
public:
    // The plain constructors let the dot match line feeds, accept no empty match and are never interrupted;
    // `flag` ignores case.
    RE_Tree(const char16_t* pattern, bool flag);
    RE_Tree(const char16_t* pattern, std::size_t length, bool flag);
    RE_Tree(const std::u16string& pattern, bool flag);
    RE_Tree(const RE_Builder_Space::RE_Builder& builder, bool flag);
    /// Flags beside a builder need a context, as beside a text; alone they would all ignore case.
    template <class Flags>
    requires(!std::same_as<Flags, bool>) RE_Tree(const RE_Builder_Space::RE_Builder& builder, Flags flags)
    = delete;
    /// The pattern is text in the local code page.
    RE_Tree(const char* pattern, bool flag);
    /// The context must outlive the tree. Without one (null) the pattern is compiled as by `RE_Context`
    /// itself: no evaluation, no interrupts, no one to be warned.
    RE_Tree(const char16_t* pattern, std::size_t length, RE_Flags flags, RE_Context* context);
    /// The text that the context is told is gone when this returns.
    RE_Tree(const RE_Builder_Space::RE_Builder& builder, RE_Flags flags, RE_Context* context);
    /// A sub-pattern: its end hands control to `continuationNode`, and unless `last` it makes no tokens. The node may
    /// stand anywhere in another tree's graph, whose tree must outlive this one and is only read. Its memo rows,
    /// registers and counts come first and those of this pattern after them; tokens of the same number share a slot, and
    /// `getTokenCount` counts those of both. A node within a closed body or a counted loop is entered as if from
    /// outside: the end of the body ends the match, and the loop's count starts at 0.
    RE_Tree(const char16_t* pattern, std::size_t length, RE_Flags flags, RE_Context* context,
            RE_Node* continuationNode, RE_Node* outerNode, bool last);
    /// The tree that was moved from has no graph and matches nothing.
    RE_Tree(RE_Tree&& other) noexcept;
    /// Frees the graph this tree had before, which must not be shared by a copy that is still in use.
    RE_Tree& operator=(RE_Tree&& other) noexcept;
    /// Both trees use one graph afterwards; only one of the two may be destroyed. The graph this tree had
    /// before is not freed, since it may be shared in the same way.
    RE_Tree& operator=(const RE_Tree& other) = default;
    ~RE_Tree();

    // Searches for the leftmost match at or behind `offset`. The result belongs to the caller (`delete`).
    // Null: no match, the search was interrupted, or there is no subject. Exceptions: those of allocation.
    RE_Results* match(const std::u16string& subject, std::size_t offset) const;
    RE_Results* match(const char16_t* subject, std::size_t length, std::size_t offset) const;
    /// The table carries answers from one search of a subject to the next.
    RE_Results* match(const char16_t* subject, std::size_t length, std::size_t offset,
                      RE_Seek_Table* table) const;
    /// Text in the local code page; indexes in the result count the units of its UTF-16 form, and the result
    /// has no subject pointers.
    RE_Results* match(const char* subject, std::size_t offset) const;
    RE_Results* match(const char* subject) const { return match(subject, 0); }

    /// A search that may take so much and no more (regexp/base/search_limits.h). The report tells "no match" from "given
    /// up".
    RE_Results* match(const char16_t* subject, std::size_t length, std::size_t offset,
                      const RE_Search_Limits& limits, RE_Search_Report& report) const;

    // Conveniences over `match`; regexp/find_all.h describes them and has to be included for their use. The
    // text, which must outlive what they return, cannot be a string that dies with the call.
    RE_Match_Range find_all(std::u16string_view text, std::size_t offset = 0) const&;
    /// The limits hold for all the searches together; `RE_Match_Range::report` tells how they ended.
    RE_Match_Range find_all(std::u16string_view text, std::size_t offset,
                            const RE_Search_Limits& limits) const&;
    std::unique_ptr<RE_Results> match_at(std::u16string_view text, std::size_t position) const;
    std::vector<std::u16string_view> split(std::u16string_view text) const;
    RE_Match_Range find_all(std::u16string_view text, std::size_t offset = 0) const&& = delete;
    RE_Match_Range find_all(std::u16string_view text, std::size_t offset,
                            const RE_Search_Limits& limits) const&& = delete;
    template <std::same_as<std::u16string> Temporary>
    RE_Match_Range find_all(Temporary&& text, std::size_t offset = 0) const = delete;
    template <std::same_as<std::u16string> Temporary>
    RE_Match_Range find_all(Temporary&& text, std::size_t offset,
                            const RE_Search_Limits& limits) const = delete;
    template <std::same_as<std::u16string> Temporary>
    std::unique_ptr<RE_Results> match_at(Temporary&& text, std::size_t position) const = delete;
    template <std::same_as<std::u16string> Temporary>
    std::vector<std::u16string_view> split(Temporary&& text) const = delete;

    /// Sets when searches of this tree begin to use what only pays in long ones. To be called before the tree is shared
    /// with other threads, and before `makeMachineCode`, which reads the width of vectors.
    void tune(const RE_Tuning& settings);
    const RE_Tuning& getTuning() const;

    // A tree makes what follows by itself once its searches have been enough work (`RE_Tuning`): the thread whose search
    // reaches that amount makes it, and no other thread waits. Both may be called at any time, also while others search.
    // Nothing else of a compiled pattern changes in a search, and no result, warning or count of steps depends on it,
    // but for the steps of searches without limits, in which the automaton may take part.

    /// Makes machine code of what the pattern does without backtracking, for searches that begin from now on. Results are
    /// the same. It takes some tens of microseconds, and memory of the machine, not of the host. False where there is
    /// none to be had, and while another thread makes it.
    bool makeMachineCode();
    /// Makes an automaton of the pattern, for searches that begin from now on. Attempts that turn back often ask it how
    /// they end, so that even the worst patterns take a nanosecond or two a unit. Results are the same. False where an
    /// automaton cannot say what the pattern does (backreferences, conditions, lookaround over more than a unit, atomic
    /// groups, dynamic expressions) or would be large, and while another thread makes it.
    bool makeDfa();

    /// Gives back the memory that the calling thread keeps from one search to the next: a state for `match` and
    /// `match_at`, of a few megabytes at most. Otherwise it goes when the thread ends.
    static void releaseThreadState() noexcept;

    /// Runs the pattern once at exactly `position`, with the caller's state. Refuses no empty match. A state
    /// that is in no attempt begins one at `position`; `RE_Results(info, position, *length, false)` is a view
    /// of the match then. Within an attempt, as of the search that runs the caller, the run is a part of it.
    bool match_bool(const char16_t* position, std::size_t* length, RE_Search_Info* info) const;

    /// The distinct names of tokens, in token order. The array belongs to the caller (`utFree`), the names to
    /// the tree. Null when there are none.
    const char16_t** treeNames(std::size_t* count) const;

    // The node graph as text for graph-drawing programs (DOT). docs/seeing-inside.md shows and explains one.
    std::string graph() const;
    std::string graph(const RE_Graph_Attributes& attributes) const;
    /// The graph of a pattern as it is when a stage of its compilation is over. Stages that the compile
    /// options switch off change nothing.
    static std::string graphAfter(RE_Stage stage, const char16_t* pattern, std::size_t length, RE_Flags flags,
                                  RE_Context* context);

    /// Searches like `match` and tells the observer of every step on the way.
    RE_Results* trace(const char16_t* subject, std::size_t length, std::size_t offset,
                      RE_Observer& observer) const;

    /// What the nodes did in all searches that are over, from any thread. Counts are kept only by patterns
    /// compiled with the option `Profile`; without it there are no nodes in the profile.
    RE_Profile profile() const;
    void clearProfile() const;

    /// Bytes of the host's memory that the compiled pattern holds, of one graph that trees may share.
    std::uint64_t memoryUse() const;
    std::uint64_t getTokenCount() const { return tokenCount; }
    /// Whether `treeNames` has any.
    bool getHasTokenNames() const { return hasTokenNames; }
    bool getAllowEmptyMatch() const { return allowEmptyMatch; }
    /// Whether a match of this length counts as one.
    bool isValidMatchLength(std::size_t length) const { return length != 0 || allowEmptyMatch; }
    /// Whether searches ask the host to be broken off, as the context had it when the pattern was compiled.
    bool isInterruptible() const { return interruptible; }
    std::uint64_t getNodeCount() const { return nodeCount; }
    const RE_Node* getRoot() const { return root; }
    const RE_Graph_Facts& getFacts() const { return *facts; }

private:
    friend struct RE_Text_Compiler;

    /// A sub-pattern that is compiled while its search runs.
    RE_Tree(const char16_t* pattern, std::size_t length, RE_Flags flags, RE_Context* context,
            RE_Node* continuationNode, RE_Node* outerNode, bool last, const RE_Sub_Pattern_Place& place);

    void parse(const char16_t* pattern, std::size_t length, bool flag);
    void parse(const char* pattern, bool flag);
    void parse(const char16_t* pattern, std::size_t length, RE_Flags flags, RE_Context* context,
               RE_Node* continuationNode, RE_Node* outerNode, bool last,
               const RE_Sub_Pattern_Place* placeOfText);
    /// `placeOfText` is that of a dynamic text within a search; null for all others.
    void compile(const char16_t* pattern, std::size_t length, RE_Flags flags, RE_Context* context,
                 RE_Node* continuationNode, RE_Node* outerNode, bool last,
                 const RE_Sub_Pattern_Place* placeOfText);

    RE_Results* searchFrom(const char16_t* subject, std::size_t length, std::size_t offset,
                           RE_Seek_Table* table, RE_Observer* observer = nullptr) const;

    RE_Node* root = nullptr;
    std::uint64_t tokenCount = 0;
    bool hasTokenNames = false;
    bool allowEmptyMatch = false;
    std::uint64_t nodeCount = 0;
    bool interruptible = false;
    RE_Graph_Facts* facts = nullptr;  ///< owns the nodes
};
