// Facts about a whole compiled graph that a search needs before it visits the first node.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/base/tuning.h"
#include "regexp/graph/instruction.h"
#include "regexp/graph/memo_scope.h"
#include "regexp/graph/node_store.h"
#include "regexp/graph/speed_ups.h"
#include "regexp/graph/start_finder_kind.h"
#include "regexp/units/unit_set.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <vector>

class RE_Consume;
class RE_Literal_Stretches;
class RE_Node;
class RE_Profiler;

/// How a search comes to the places where an attempt begins.
struct RE_Attempt_Start {
    const RE_Node* entry = nullptr;  ///< where it begins when nobody watches: behind a node that only seeks
    bool rootSeeks = false;
    bool skipsSeeker = false;            ///< `entry` is not the root
    const RE_Unit_Set* units = nullptr;  ///< all that the seeker looks for, if that is one of them; else null
};

/// The units with which a match can begin. Those from 0x80 on are not told apart: this is for tables over many patterns.
struct RE_Match_Beginnings {
    RE_Low_Units low;
    bool above = false;    ///< some unit that is not low
    bool isKnown = false;  ///< otherwise a match may begin with any unit, or be empty
};

/// Made by the parser, owned by the compiled pattern, read-only during searches but for its speed-ups. Owns the nodes
/// once they are handed over.
struct CORVANE_REGEXP_EXPORT RE_Graph_Facts : public RE_Memory {
    RE_Graph_Facts();
    ~RE_Graph_Facts();
    RE_Graph_Facts(const RE_Graph_Facts&) = delete;
    RE_Graph_Facts& operator=(const RE_Graph_Facts&) = delete;

    RE_Node_Store store;                                  ///< memory of the nodes
    std::vector<RE_Node*, RE_Allocator<RE_Node*>> nodes;  ///< each once, in the order in which they were made
    RE_Tuning tuning = RE_Tuning::ofNewTrees();
    std::size_t tokenCount = 0;
    bool keepsTokens = false;  ///< closing a token leaves the higher ones in effect
    std::basic_string<char16_t, std::char_traits<char16_t>, RE_Allocator<char16_t>> nameText;
    /// The names of the slots, null for unnamed ones; empty when no token is named. In `nameText`, or of another graph.
    std::vector<const char16_t*, RE_Allocator<const char16_t*>> tokenNames;
    std::size_t passRegisters = 0;  ///< one a loop whose body can match without consuming
    std::uint32_t memoRows =
        0;  ///< nodes that take part in the memo; their indexes are the first row numbers
    std::uint64_t lastNodeId = 0;     ///< the greatest number that a node of the pattern was given
    std::uint64_t minimumLength = 0;  ///< least number of units of a match
    std::uint64_t bytes = 0;          ///< of the host's memory, held by nodes and facts
    bool hasDynamicNodes = false;     ///< matching may call the host
    RE_Start_Finder startFinder = RE_Start_Finder::none;
    RE_Attempt_Start start;
    RE_Match_Beginnings beginnings;
    RE_Program program;  ///< of the graph from `start.entry` on, for searches that nobody watches
    /// Of this graph and these settings alone, in the whole process: what was kept for them is told by it from what was
    /// kept for others, which may have had the same address.
    std::uint64_t serial = nextSerial();
    static std::uint64_t nextSerial();
    const RE_Node* root = nullptr;
    bool refusesEmpty = true;  ///< empty matches do not count
    mutable RE_Speed_Ups speedUps;
    /// The loop over one unit with which every match begins, or null: `RE_Consume::lastHopelessStart`.
    const RE_Consume* leadingLoop = nullptr;
    using Needed = std::unique_ptr<const RE_Literal_Stretches>;
    /// Literals behind the start of every match: without the next of them there is none.
    std::vector<Needed, RE_Allocator<Needed>> needed;
    /// Slots whose text a backreference or condition may ask for, ascending.
    std::vector<std::size_t, RE_Allocator<std::size_t>> referencedTokens;
    /// Storage of the memo scopes; a list, so that the links between them stay valid.
    std::list<RE_Memo_Scope, RE_Allocator<RE_Memo_Scope>> memoScopes;

    std::shared_ptr<RE_Profiler> profiler;  ///< of patterns compiled for profiling; else null

    /// A state that failed from one start position also fails from later ones.
    bool memoOutlivesStarts() const { return referencedTokens.empty() && !hasDynamicNodes; }
    /// The first memo row that no node has for itself. The nodes of dynamic texts get theirs as they come.
    std::uint32_t firstCombinedRow() const { return hasDynamicNodes ? std::uint32_t{1} << 31 : memoRows; }
};
