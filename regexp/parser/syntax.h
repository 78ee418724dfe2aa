// The syntax tree of a pattern: what the grammar reads and the graph builder turns into nodes.
//
// Items lie in one array and refer to each other by index, so that reading, walking and freeing a tree takes
// no recursion, however deeply a pattern nests.
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
    atomic,       ///< a group without give-back
    look,         ///< an assertion; `behind`, `negative`
    conditional,  ///< children: the branches; `condition` or a token decides
    repeat,       ///< one child; `minimum`, `maximum`, `qualifier`
    text,         ///< `number` literal units, at least two, from `payload` on in the units of the tree
    literal,      ///< unit `low`; from here to the dot they consume one unit
    range,        ///< units `low` to `high`
    escaped,      ///< a class named by letter `low`
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

    /// Consumes one unit, which it decides alone.
    bool isUnit() const { return kind >= RE_Syntax_Kind::literal && kind <= RE_Syntax_Kind::dot; }

    /// Of a repeat: `x?`, `x{0,1}` and their lazy and possessive forms choose between their body and nothing. That is no
    /// loop, so a body that consumes nothing is a way like any other, while the optional passes of loops have to consume.
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
    std::uint32_t firstChild = none;
    std::uint32_t lastChild = none;
    std::uint32_t nextSibling = none;
    std::uint32_t condition = none;  ///< conditional: the assertion that decides, when it is not a token
    std::uint32_t payload = none;    ///< index of a set, a name or something for the host
    union {
        std::uint64_t number = 0;  ///< token slot, from 0; units of a text
        std::uint64_t minimum;     ///< of a repeat; measured of a look
    };
    std::uint64_t maximum = 0;

    // Measured once the whole pattern has been read.
    std::uint64_t least = 0;  ///< units consumed at the least
    std::uint64_t most = 0;   ///< units consumed at the most, saturated
    std::uint32_t nodes = 0;  ///< nodes it will compile to, saturated
    std::uint32_t emptyPasses =
        1;  ///< passes that matching the empty text takes, but for those left out far from the end
    std::uint32_t allPasses = 1;  ///< with these, saturated
    std::uint16_t closed = 0;     ///< nesting of closed bodies
    std::uint16_t written =
        0;  ///< tokens that it records, saturated; 0 where nothing in the pattern reads tokens
};

struct RE_Syntax_Set {
    std::shared_ptr<const RE_Unit_Set> units;
    std::string text;  ///< as written, for labels
};

/// What a dynamic construct hands to its nodes. Made when the construct is read, so that it is made once
/// however often a loop's body is copied.
using RE_Syntax_Dynamic =
    std::variant<std::shared_ptr<const RE_Script_Evaluator>, std::shared_ptr<const RE_Bool_Evaluator>,
                 std::shared_ptr<const RE_String_Evaluator>, std::shared_ptr<const RE_Replace>>;

class RE_Syntax_Tree {
public:
    /// For about so many items.
    RE_Syntax_Tree(std::size_t expectedItems, RE_Scratch_Memory* memory)
        : sets(memory), units(memory), complete(memory), items(memory) {
        items.reserve(expectedItems);
        complete.reserve(usualItems);
        units.reserve(usualUnits);
    }

    std::uint32_t add(RE_Syntax_Kind kind, std::uint32_t position, RE_Flags flags);
    void append(std::uint32_t parent, std::uint32_t child);
    /// Adds literal units to the literals that `parent` ends with under the same modes. False when it does not.
    bool extendText(std::uint32_t parent, const char16_t* added, std::size_t count, RE_Flags flags);
    /// Makes the last unit of the text that `parent` ends with an item of its own.
    void detachLastUnit(std::uint32_t parent);
    /// Notes that all items within the item are read.
    void close(std::uint32_t index) { complete.push_back(index); }
    /// Puts a new item, which is complete, around `index`: the item moves to a place of its own and `index` becomes its
    /// parent.
    void wrap(std::uint32_t index, RE_Syntax_Kind kind, std::uint32_t position);

    RE_Syntax& operator[](std::uint32_t index) { return items[index]; }
    const RE_Syntax& operator[](std::uint32_t index) const { return items[index]; }
    /// The items that hold others, each behind those that it holds.
    const RE_Scratch_List<std::uint32_t>& closed() const { return complete; }
    /// Holds no other items.
    bool isLeaf(std::uint32_t index) const {
        return items[index].firstChild == RE_Syntax::none && items[index].condition == RE_Syntax::none;
    }
    bool consumesOneUnit(std::uint32_t index) const { return items[index].isUnit(); }
    /// The single item of a branch that consists of one single-unit item, or `none`.
    std::uint32_t soleUnit(std::uint32_t branch) const;
    /// Whether an item that evaluates matches a text that comes to be in the search.
    bool isDynamicText(const RE_Syntax& item) const;

    static constexpr std::uint32_t root = 0;

    RE_Scratch_List<RE_Syntax_Set> sets;
    std::vector<std::u16string> names;
    RE_Scratch_List<char16_t> units;
    std::vector<RE_Syntax_Dynamic> dynamics;
    std::uint64_t groupCount = 0;

private:
    static constexpr std::size_t usualItems = 16;
    static constexpr std::size_t usualUnits = 32;

    RE_Scratch_List<std::uint32_t> complete;
    RE_Scratch_List<RE_Syntax> items;
};
