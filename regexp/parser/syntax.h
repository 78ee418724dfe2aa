// The syntax tree of a pattern: what the grammar reads and the graph builder turns into nodes.
//
// Items lie in one array and refer to each other by index, so that reading, walking and freeing a tree takes
// no recursion, however deeply a pattern nests.
#pragma once

#include "regexp/flags.h"
#include "regexp/memory.h"
#include "regexp/unit_set.h"

#include <cstdint>
#include <memory>
#include <memory_resource>
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
    literal,      ///< unit `low`
    text,         ///< `number` literal units, at least two, from `payload` on in the units of the tree
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

    RE_Syntax_Kind kind;
    RE_Qualifier qualifier = RE_Qualifier::greedy;
    bool behind = false;
    bool negative = false;
    char16_t low = 0;
    char16_t high = 0;
    RE_Flags flags = 0;          ///< modes in force at the item
    std::uint32_t position = 0;  ///< index in the pattern, for warnings
    std::uint32_t firstChild = none;
    std::uint32_t lastChild = none;
    std::uint32_t nextSibling = none;
    std::uint32_t condition = none;  ///< conditional: the assertion that decides, when it is not a token
    std::uint32_t payload = none;    ///< index of a set, a name or something for the host
    std::uint64_t number = 0;        ///< token slot, from 0
    std::uint64_t minimum = 0;
    std::uint64_t maximum = 0;

    // Measured once the whole pattern has been read.
    std::uint64_t least = 0;        ///< units consumed at the least
    std::uint64_t most = 0;         ///< units consumed at the most, saturated
    std::uint64_t nodes = 0;        ///< nodes it will compile to, saturated
    std::uint32_t emptyPasses = 1;  ///< passes that matching the empty text takes, saturated
    std::uint16_t guards = 0;       ///< nesting of loops with counts or pass guards
    std::uint16_t closed = 0;       ///< nesting of closed bodies
    bool captures = false;          ///< records tokens
    bool evaluates = false;         ///< calls the host
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
    explicit RE_Syntax_Tree(std::pmr::memory_resource* memory) : sets(memory), units(memory), items(memory) {
        items.reserve(usualItems);
        units.reserve(usualUnits);
    }

    std::uint32_t add(RE_Syntax_Kind kind, std::uint32_t position, RE_Flags flags);
    void append(std::uint32_t parent, std::uint32_t child);
    /// Adds literal units to the literals that `parent` ends with under the same modes. False when it does not.
    bool extendText(std::uint32_t parent, const char16_t* added, std::size_t count, RE_Flags flags);
    /// Makes the last unit of the text that `parent` ends with an item of its own.
    void detachLastUnit(std::uint32_t parent);
    /// Puts a new item around `index`: the item moves to a place of its own and `index` becomes its parent.
    void wrap(std::uint32_t index, RE_Syntax_Kind kind, std::uint32_t position);

    RE_Syntax& operator[](std::uint32_t index) { return items[index]; }
    const RE_Syntax& operator[](std::uint32_t index) const { return items[index]; }
    /// Holds no other items.
    bool isLeaf(std::uint32_t index) const {
        return items[index].firstChild == RE_Syntax::none && items[index].condition == RE_Syntax::none;
    }
    bool consumesOneUnit(std::uint32_t index) const;
    /// The single item of a branch that consists of one single-unit item, or `none`.
    std::uint32_t soleUnit(std::uint32_t branch) const;
    /// Whether the item matches a text that comes to be in the search.
    bool isDynamicText(std::uint32_t index) const;

    static constexpr std::uint32_t root = 0;

    std::pmr::vector<RE_Syntax_Set> sets;
    std::vector<std::u16string> names;
    std::pmr::vector<char16_t> units;
    std::vector<RE_Syntax_Dynamic> dynamics;
    std::uint64_t groupCount = 0;

private:
    static constexpr std::size_t usualItems = 16;
    static constexpr std::size_t usualUnits = 32;

    std::pmr::vector<RE_Syntax> items;
};
