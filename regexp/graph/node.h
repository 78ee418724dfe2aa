// The protocol of graph nodes.
//
// A compiled pattern is a directed graph of nodes. A node never calls its successor: `match` answers whether
// the node matches at a position, and the match loop follows `next()`, `failNode()` or the most recent
// choice. The links of a node are told to whoever asks through one operation, `visitLinks`; walks, passes and
// graph export all build on it.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/graph/node_class.h"
#include "regexp/seek/seek_table.h"

#include <cstddef>
#include <cstdint>
#include <string>

struct RE_Graph_Output;
class RE_Token_Names;
struct RE_Graph_Facts;
struct RE_Meaning;
class RE_Unit_Set;
class RE_Graph_Context;
class RE_Search_Info;
struct RE_Backtrack_Record;
struct RE_Memo_Scope;

/// What a link between two nodes means.
enum class RE_Link { next, fail, alternative, body, item, done, helper };

/// Receives every link of a node, by reference, so that a pass can redirect it. Targets may be null.
class RE_Link_Visitor {
public:
    virtual ~RE_Link_Visitor() = default;
    virtual void link(RE_Node*& target, RE_Link kind) = 0;
};

/// Receives the numbers by which a node finds what it keeps in the state of a search.
class RE_Number_Visitor {
public:
    virtual ~RE_Number_Visitor() = default;
    virtual void pass(std::size_t number) = 0;
    /// `name` is null where the node has none.
    virtual void token(std::size_t number, const char16_t* name) = 0;
};

/// Base of all graph nodes. Nodes are owned by the compiled pattern (until then by the parser); links never
/// own. Read-only while any search runs.
class CORVANE_REGEXP_EXPORT RE_Node : public RE_Memory {
public:
    static constexpr std::uint64_t unboundedLength = static_cast<std::uint64_t>(-1);

    explicit RE_Node(RE_Graph_Context& context);
    /// Copies links and lengths; the number is drawn afresh.
    RE_Node(RE_Graph_Context& context, const RE_Node& other);
    /// Puts the new node between `predecessor` and `successor`.
    RE_Node(RE_Graph_Context& context, RE_Node& predecessor, RE_Node* successor);
    virtual ~RE_Node() = default;
    RE_Node(const RE_Node&) = delete;
    RE_Node& operator=(const RE_Node&) = delete;

    // --- matching ---

    /// Tests the subject at `pos` (an index in code units from its first unit) and moves `pos` past what was
    /// consumed. On failure `pos` is unchanged.
    virtual bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const;
    virtual RE_Node* next() const { return nextNode; }
    virtual RE_Node* failNode() const { return nullptr; }
    /// The match, or the closed body, is complete when this node has matched.
    virtual bool isEnd() const { return false; }
    /// An end that included a dynamic text: the first node of the text. The text's own end leads on behind
    /// this node.
    virtual const RE_Node* includedText(const RE_Search_Info&) const { return nullptr; }
    /// Takes up a choice that this node left: the node to go on at, with `pos` set, or null when the choice
    /// is spent.
    virtual RE_Node* resume(const RE_Backtrack_Record& record, std::size_t& pos, RE_Search_Info& info) const;
    /// The branch that a popped record of this node leads to; null for records that only undo.
    virtual RE_Node* alternativeNode() const { return nullptr; }
    virtual void onBacktrack(RE_Search_Info&) const {}
    /// A closed body of this node completed (at `pos`) or failed. Closes its frame, or opens it for another
    /// try, and returns the node to go on at with `pos` set, or null for a dead end.
    virtual RE_Node* bodyEnded(bool completed, std::size_t& pos, RE_Search_Info& info) const;

    /// What `match` does, for whoever reasons about graphs: regexp/graph/meaning.h. A class that does not say it is
    /// `Unknown`: searches are right, and nothing is concluded from its nodes.
    virtual RE_Meaning meaning() const;

    // --- the graph ---

    virtual void visitLinks(RE_Link_Visitor& visitor);
    /// Having matched, this node goes on at `target` and nowhere else.
    virtual bool leadsTo(RE_Node* /*target*/) { return false; }
    virtual bool isSkippable() const { return skippable; }
    /// Two ways on.
    virtual bool isBranching() const { return false; }
    /// Text for people, as shown in graphs.
    virtual std::string label() const { return {}; }
    /// Writes this node and its links in the graph language.
    virtual void graph(RE_Graph_Output& out);

    /// Tells the numbers of passes and tokens that `match` uses. Trap: a search shares one set of numbers with
    /// the sub-patterns that it includes, so a number that is not told here may be given out again.
    virtual void visitNumbers(RE_Number_Visitor&) const {}

    // --- tokens ---

    virtual bool isStartToken() const { return false; }
    virtual bool isEndToken() const { return false; }
    /// Tells the name of the token that opens here.
    virtual void prepareTokens(RE_Token_Names&) const {}
    /// Finds out whether anything reads the token of this node.
    virtual bool resolveTokens(const RE_Graph_Facts&) { return false; }

    // --- repetition ---

    virtual bool isStartCounter() const { return false; }
    virtual bool isStateCounter() const { return false; }
    /// A second record of this counter at one position is refused when `depth` of its loops were entered in
    /// between.
    virtual bool refusesRepeatAt(std::size_t) const { return false; }
    virtual bool pairsWith(const RE_Node*) const { return false; }

    // --- strings ---

    virtual bool canJoinString(bool /*first*/, bool /*ignoreCase*/) const { return false; }
    virtual RE_Node* joinString(RE_Graph_Context&) { return nullptr; }

    // --- seeking ---

    virtual void initSeek() {}
    /// Whether `seek` can rule positions out. With `referenced` a token of this node is read elsewhere.
    virtual bool canSeek(bool /*referenced*/) const { return false; }
    /// First position at or after `p` at which the node can match, or null.
    virtual const char16_t* seek(const char16_t* p, RE_Search_Info& info) const;
    /// Last position in [p, p + count] at which the node can match, or null.
    virtual const char16_t* rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const;
    virtual RE_Seek_Key seekKey(bool throughBranches) const;
    /// Number of units that a seek of this node has verified already.
    virtual std::size_t fixedLead() const { return 0; }

    // --- lengths: whoever asks for them has them computed first ---

    /// Number of units that a match of this node alone consumes.
    virtual std::uint64_t width() const { return 0; }
    /// Measures this node and everything it leads to. Iterative.
    virtual void computeLengths();
    /// Computes this node's lengths from those of its successors.
    virtual void combineLengths();

    // In an order without gaps: patterns have many nodes.
    RE_Class_Bits classes = 0;  ///< of `RE_Node_Classes`; set by whoever makes the node, once it is made
    std::uint64_t nodeId;       ///< serial number within the pattern, from 1
    RE_Node* nextNode = nullptr;
    std::uint64_t minLength = 0;  ///< least number of units from here to the end of the branch
    std::uint64_t maxLength = 0;  ///< greatest such number; `unboundedLength` when there is none
    const RE_Memo_Scope* memoScope = nullptr;
    std::uint32_t memoIndex = 0;
    std::uint32_t walk =
        0;  ///< the last walk of a pass that came here, and what it noted: `RE_Graph_Context::nextWalk`
    std::uint32_t walkNote = 0;
    RE_Node_Kind kind = RE_Node_Kind::other;
    bool skippable = false;     ///< does nothing at match time and may be bypassed
    bool sharedTarget = false;  ///< has more than one predecessor
    bool visited = false;       ///< mark of the walk that runs while the pattern is compiled or destroyed
    bool maxBounded = true;     ///< `maxLength` is finite
    bool isCounter = false;     ///< popping a record of this node undoes something
    bool memoised = false;      ///< choices of this node are told to the memo
    bool reuseRecord = false;   ///< overwrites its earlier record instead of stacking a new one
    bool guarded = false;       ///< made by the parser, which guards empty passes by nodes of their own
};

/// The node as one of this class, or null when it is none. Null for null, too.
template <class Class>
Class* nodeAs(RE_Node* node) {
    const bool is = node != nullptr && (node->classes & RE_Node_Classes::bit<Class>()) != 0;
    return is ? static_cast<Class*>(node) : nullptr;
}
template <class Class>
const Class* nodeAs(const RE_Node* node) {
    return nodeAs<Class>(const_cast<RE_Node*>(node));
}

/// The node that a link to `node` leads to once nodes that do nothing are passed over.
inline RE_Node* throughSkippable(RE_Node* node) {
    constexpr RE_Class_Bits empty = RE_Node_Classes::bit<RE_Null>();
    while (node != nullptr && (node->skippable || (node->classes & empty) != 0) && node->isSkippable()) {
        node = node->next();
    }
    return node;
}

/// A node with a second way on when it fails.
class CORVANE_REGEXP_EXPORT RE_Fail : public RE_Node {
public:
    using RE_Node::RE_Node;

    RE_Node* failNode() const override { return failTarget; }
    void visitLinks(RE_Link_Visitor& visitor) override;
    void combineLengths() override;
    virtual void setFailNode(RE_Node* node) { failTarget = node; }
    virtual bool hasFailNode() const { return failTarget != nullptr; }

    RE_Node* failTarget = nullptr;
};

/// A node that tests a single unit, or stands in for one in a fail chain.
class CORVANE_REGEXP_EXPORT RE_Consumable : public RE_Fail {
public:
    using RE_Fail::RE_Fail;

    /// Consumes exactly one unit, decided by that unit alone.
    virtual bool isSingleUnit() const { return false; }
    virtual bool matchesUnit(char16_t) const { return false; }
    /// Adds every unit that this node matches.
    virtual void addUnitsTo(RE_Unit_Set& set) const;
    /// The units that this node matches, where it has them as a table.
    virtual const RE_Unit_Set* table() const { return nullptr; }
    /// Length of the run of units from `p`, up to `limit`, that this node matches.
    virtual std::size_t skipDistance(const char16_t* p, const char16_t* limit) const;
    virtual bool matchesAnyChar() const { return false; }
    /// Cuts a fail chain behind a node that matches any unit. False when this node must stay as it is.
    virtual bool absorbFailNode();

    bool isItem = false;  ///< of a loop over one unit, which tests it in this node's place
};
