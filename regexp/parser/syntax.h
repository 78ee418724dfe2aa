// The syntax tree of a pattern: what the grammar reads, the measuring fills in and the graph builder turns
// into nodes.
//
// Invariants:
// * Items lie in one array and refer to each other by index, never by pointer or reference: adding an item
//   may move all others. Reading, walking and freeing a tree takes no recursion, however deeply a pattern
//   nests.
// * Index 0 is the root, a group. A group, capture, atomic, look or conditional has sequences as children
//   (its branches); a sequence has items; a repeat has exactly one child. Only a divided conditional
//   differs: its second child is a group that holds all the branches after the first bar.
// * `closed()` lists every item that holds others, each after all that it holds, so that one pass over the
//   list measures bottom-up.
//
// A tree lives while one pattern is compiled, on one thread. Its lists take scratch memory of the
// compilation; positions are indexes of code units in the pattern.
#pragma once

#include "regexp/base/flags.h"
#include "regexp/base/memory.h"
#include "regexp/base/scratch_memory.h"
#include "regexp/units/unit_set.h"

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

class RE_Bool_Evaluator;
class RE_Replace;
class RE_Script_Evaluator;
class RE_String_Evaluator;

enum class RE_Syntax_Kind : std::uint8_t {
    sequence,     ///< children one after another
    group,        ///< children are branches (sequences)
    capture,      ///< a group that records token `number`
    atomic,       ///< a group whose choices are dropped once it has matched
    look,         ///< an assertion; `behind`, `negative`
    conditional,  ///< children: the branches; `condition` or a token decides
    repeat,       ///< one child; `minimum`, `maximum`, `qualifier`
    text,         ///< `number` literal units, at least two, from `payload` on in the units of the tree
    literal,      ///< unit `low`; from here to the dot they consume one unit
    range,        ///< units `low` to `high`
    escaped,      ///< a class, named by the letter `low`
    set,          ///< the set `payload`
    dot,
    start_anchor,
    end_anchor,
    start_word,
    end_word,
    evaluate,   ///< an expression for its effects, or a dynamic text: the host's `payload`
    reference,  ///< the text of a token, by `number` or by the name `payload`
    dropped     ///< compiles to nothing
};

enum class RE_Qualifier : std::uint8_t { greedy = 0, lazy = 1, possessive = 2 };

struct RE_Syntax {
    static constexpr std::uint32_t none = static_cast<std::uint32_t>(-1);
    static constexpr std::uint64_t noMaximum = static_cast<std::uint64_t>(-1);

    /// Consumes exactly one unit and decides by that unit alone. Relies on the order of the kinds.
    bool isUnit() const { return kind >= RE_Syntax_Kind::literal && kind <= RE_Syntax_Kind::dot; }

    /// Of a repeat, by the bounds as written: `x?`, `x{0,1}` and their lazy and possessive forms choose
    /// between their body and nothing. That is no loop, so a body that consumes nothing is a branch like
    /// any other, while the optional passes of loops must consume. Trap: bounds that a plan lowers to
    /// these, as those of `(?:^){0,5}`, do not make a plain choice; never apply this to a plan.
    bool isPlainChoice() const { return minimum == 0 && maximum == 1; }

    RE_Syntax_Kind kind;
    RE_Qualifier qualifier = RE_Qualifier::greedy;
    bool behind : 1 = false;
    bool negative : 1 = false;
    bool captures : 1 = false;   ///< measured: records tokens
    bool evaluates : 1 = false;  ///< measured: calls the host
    bool reads : 1 = false;      ///< measured: depends on tokens
    std::uint8_t guards = 0;     ///< measured: nesting of loops with counts or pass guards
    char16_t low = 0;
    char16_t high = 0;
    RE_Flags flags = 0;          ///< modes in force at the item
    std::uint32_t position = 0;  ///< index in the pattern, for warnings
    std::uint32_t begin = 0;     ///< index of the first unit of the item in the pattern
    std::uint32_t end = 0;       ///< index past its last unit; 0 for what is a part of another item
    std::uint32_t firstChild = none;
    std::uint32_t lastChild = none;
    std::uint32_t nextSibling = none;
    std::uint32_t condition = none;  ///< conditional: the assertion that decides, when it is not a token
    std::uint32_t payload = none;    ///< index of a set, a name or something for the host
    // One word serves two purposes, as no kind needs both. Which one is live follows from `kind`; a look
    // has bounds only once it is measured.
    union {
        std::uint64_t number = 0;  ///< token slot, from 0; units of a text
        std::uint64_t minimum;     ///< of a repeat; measured of a look
    };
    std::uint64_t maximum = 0;

    // Measured once the whole pattern has been read: which tokens are referenced is not known before.
    // Lengths and counts saturate, so that nested bounds cannot overflow.
    std::uint64_t least = 0;  ///< units consumed at the least
    std::uint64_t most = 0;   ///< units consumed at the most, saturated
    std::uint32_t nodes = 0;  ///< nodes it will compile to, saturated
    std::uint32_t emptyPasses =
        1;  ///< passes that matching the empty text takes, without those left out far from the end
    std::uint32_t allPasses = 1;  ///< the same with those, saturated
    std::uint16_t closed = 0;     ///< nesting of closed bodies
    std::uint16_t written =
        0;  ///< tokens that it records, saturated; 0 where nothing in the pattern reads tokens
};

/// A bracket expression. Equal sets share their units, but keep their own texts.
struct RE_Syntax_Set {
    std::shared_ptr<const RE_Unit_Set> units;
    std::string text;  ///< as written, for labels
};

/// What a dynamic construct hands to its nodes. Made when the construct is read, so that the host compiles
/// each expression once, in the order of the pattern, however often the body of a loop is copied. Nodes
/// share ownership.
using RE_Syntax_Dynamic =
    std::variant<std::shared_ptr<const RE_Script_Evaluator>, std::shared_ptr<const RE_Bool_Evaluator>,
                 std::shared_ptr<const RE_String_Evaluator>, std::shared_ptr<const RE_Replace>>;

class RE_Syntax_Tree {
public:
    /// Reserves room for about so many items. A wrong guess costs time only.
    RE_Syntax_Tree(std::size_t expectedItems, RE_Scratch_Memory* memory)
        : sets(memory), units(memory), complete(memory), items(memory) {
        items.reserve(expectedItems);
        complete.reserve(usualItems);
        units.reserve(usualUnits);
    }

    /// Makes an item that belongs to no parent yet and returns its index. References to items do not
    /// survive this.
    std::uint32_t add(RE_Syntax_Kind kind, std::uint32_t position, RE_Flags flags);
    /// Makes `child` the last child of `parent`. An item has at most one parent.
    void append(std::uint32_t parent, std::uint32_t child);
    /// Adds literal units to the literal or text that `parent` ends with. False, and no change, when its
    /// last child is anything else or was read under other modes: case may differ, so the units must not
    /// become one text.
    bool extendText(std::uint32_t parent, const char16_t* added, std::size_t count, RE_Flags flags);
    /// Splits the last unit off the text that `parent` ends with: a quantifier repeats one unit, not the
    /// text. The unit begins at `position`.
    void detachLastUnit(std::uint32_t parent, std::uint32_t position);
    /// Notes that everything within the item has been read. Called once for each item that has children,
    /// inner ones first.
    void close(std::uint32_t index) { complete.push_back(index); }
    /// Puts a new, complete item around the one at `index`, which must be the last one that was closed, or
    /// a leaf. The old item moves to a new index and `index` becomes its parent, so that links to `index`
    /// need no change.
    void wrap(std::uint32_t index, RE_Syntax_Kind kind, std::uint32_t position);

    RE_Syntax& operator[](std::uint32_t index) { return items[index]; }
    const RE_Syntax& operator[](std::uint32_t index) const { return items[index]; }
    /// The items that hold others, each after those that it holds.
    const RE_Scratch_List<std::uint32_t>& closed() const { return complete; }
    /// Holds no other items, so that it can be measured and built at once. A conditional holds its
    /// condition too.
    bool isLeaf(std::uint32_t index) const {
        return items[index].firstChild == RE_Syntax::none && items[index].condition == RE_Syntax::none;
    }
    bool consumesOneUnit(std::uint32_t index) const { return items[index].isUnit(); }
    /// The single item of a branch that consists of one single-unit item, or `none`.
    std::uint32_t soleUnit(std::uint32_t branch) const;
    /// Of an `evaluate` item: whether it matches a text that is made during the search, so that what it
    /// consumes is unknown. Otherwise it runs for its effects and consumes nothing.
    bool isDynamicText(const RE_Syntax& item) const;

    static constexpr std::uint32_t root = 0;

    // What `payload` of an item indexes, by its kind.
    RE_Scratch_List<RE_Syntax_Set> sets;
    std::vector<std::u16string> names;  ///< one entry for each use, so repeated names are there repeatedly
    RE_Scratch_List<char16_t> units;    ///< of all texts, each contiguous
    std::vector<RE_Syntax_Dynamic> dynamics;

    std::uint64_t groupCount = 0;  ///< capturing groups opened so far

private:
    // Most patterns fit into these without growing.
    static constexpr std::size_t usualItems = 16;
    static constexpr std::size_t usualUnits = 32;

    RE_Scratch_List<std::uint32_t> complete;
    RE_Scratch_List<RE_Syntax> items;
};
